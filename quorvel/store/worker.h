#pragma once

#include <functional>
#include <string>

namespace quorvel {

/// Runs the task on the component's one worker, after those that were given before. A failure, of the task or of starting a
/// worker for it, is written to the console after `failure` and ": ". [any-thread]
void run_on_worker(std::string failure, std::function<void()> task);

/// Returns when every task is done; those that no thread has begun are run here. [main-thread]
void finish_worker() noexcept;

}  // namespace quorvel
