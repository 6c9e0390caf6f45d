#pragma once

#include <nlohmann/json.hpp>

#include "player/summary/figures.h"

namespace ostrevan::terminal {

nlohmann::ordered_json stats_json(const summary::question& wanted, const summary::figures& of);

}  // namespace ostrevan::terminal
