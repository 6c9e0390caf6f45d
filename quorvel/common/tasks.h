#pragma once

#include <functional>
#include <string>

namespace quorvel {

/// Runs `work` later on the main thread, in the order of posting. Throws when the player does not offer the service.
/// [any-thread]
void post_to_main_thread(std::function<void()> work);

/// Runs the task on the component's one worker, after those given before. If it fails, or no worker can be started, the
/// reason is written to the console after `failure` and ": ". [any-thread]
void run_on_worker(const std::string& failure, std::function<void()> task);

/// Returns when every task is done. Those that no thread has begun are run here. [main-thread]
void finish_worker() noexcept;

}  // namespace quorvel
