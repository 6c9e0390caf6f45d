#pragma once

#include <optional>

#include "player/remote/message.h"
#include "player/remote/socket_place.h"

namespace ostrevan::remote {

/// Has the owner of a profile carry out a command with the standard streams, terminal and current folder of this process,
/// and passes on Ctrl-C. Returns the exit status; empty when nobody listens, or when the owner is ending. Throws with a
/// message for the user when the owner refuses or ends before the command does. [main-thread]
std::optional<int> run_at_owner(const socket_place& place, const command& wanted);

}  // namespace ostrevan::remote
