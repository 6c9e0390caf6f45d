#pragma once

#include <optional>

#include "player/remote/message.h"
#include "player/system/descriptor.h"

namespace ostrevan::remote {

/// Has the owner at the other end of a socket carry out a command with the standard streams, terminal and current folder of
/// this process, and passes on Ctrl-C. Returns the exit status; empty when the owner is ending and another may follow.
/// Throws with a message for the user when the owner refuses, or ends before the command does. [main-thread]
std::optional<int> run_at_owner(system::descriptor owner, command wanted);

}  // namespace ostrevan::remote
