#include "player/terminal/playlist_entries.h"

#include <stdexcept>

namespace ostrevan::terminal {

std::vector<playable_location> entries_of(run_context& context, const std::string& name) {
    auto entries = context.player.library.playlists().entries(name);
    if (!entries) throw std::runtime_error("There is no playlist \"" + name + "\"; see 'ostrevan playlist list'.");
    return std::move(*entries);
}

}  // namespace ostrevan::terminal
