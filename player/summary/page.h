#pragma once

#include <string>

#include "player/summary/figures.h"

namespace ostrevan::summary {

/// The figures as one HTML page that needs nothing else: no script, and nothing from anywhere. For screens of any size,
/// light or dark.
std::string page_of(const question& wanted, const figures& of);

}  // namespace ostrevan::summary
