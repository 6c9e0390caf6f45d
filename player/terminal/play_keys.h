#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "player/playback/actions.h"

namespace ostrevan::terminal {

/// What a key does while tracks play; empty for a key without a meaning.
std::optional<playback::request> request_of(std::string_view key);

/// The table of keys, a line each.
std::string keys_help();

}  // namespace ostrevan::terminal
