#pragma once

#include <functional>

namespace quorvel {

/// Runs `work` later on the main thread, in the order of posting. Throws when the player does not offer the service.
/// [any-thread]
void post_to_main_thread(std::function<void()> work);

}  // namespace quorvel
