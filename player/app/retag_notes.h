#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "player/app/session.h"

namespace ostrevan::app {

/// Tells the user through `note` which tracks get the tags of others, and what becomes of their statistics. Returns how many
/// of them share their new tags with another track of the library, and not only with a record whose track is gone.
/// [any-thread]
std::size_t note_retags(session& player, const std::vector<retag>& retags,
                        const std::function<void(const std::string& line)>& note);

}  // namespace ostrevan::app
