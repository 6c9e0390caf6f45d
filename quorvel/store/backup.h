#pragma once

namespace quorvel {

/// Has the player put a copy of the index aside before a change that nobody could take back, and a copy of a file beside it
/// (null for none). Does nothing when the player does not offer that; throws when it does and fails. [main-thread]
void back_up_index(const char* reason, const char* beside);

}  // namespace quorvel
