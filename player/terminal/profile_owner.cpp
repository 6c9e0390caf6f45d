#include "player/terminal/profile_owner.h"

#include <exception>
#include <filesystem>
#include <utility>

namespace ostrevan::terminal {

profile_owner::profile_owner(const app::session_options& options, core::profile_lock lock, view::front_end& ui,
                             bool is_lasting)
    : state{.components = std::filesystem::absolute(options.components).lexically_normal(), .is_lasting = is_lasting},
      place_(lock.is_exclusive() ? remote::socket_place::of(options.profile) : std::nullopt),
      player(options, std::move(lock), ui),
      desktop_(player) {
    const core::job::scope nobody(nullptr);
    try {
        if (place_) clients_.emplace(player, state, *place_);
        else state.obstacle = "The profile can only be read.";
    } catch (const std::exception& error) {
        state.obstacle = error.what();  // a client says it, too
    }
}

}  // namespace ostrevan::terminal
