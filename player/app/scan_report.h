#pragma once

#include <string>
#include <vector>

#include "player/library/scan_summary.h"

namespace ostrevan::app {

// Sentences for the user.

/// The folders and files that were not read, and why.
std::vector<std::string> scan_problems(const library::scan_summary& done);
/// What has become of the library.
std::vector<std::string> scan_notes(const library::scan_summary& done);

}  // namespace ostrevan::app
