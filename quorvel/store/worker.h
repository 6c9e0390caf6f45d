#pragma once

#include <functional>
#include <string>

namespace quorvel {

/// Runs the task on the component's one worker, after those that were given before. A failure, of the task or of starting a
/// worker for it, is written to the console after `failure` and ": ". [any-thread]
void run_on_worker(std::string failure, std::function<void()> task);

}  // namespace quorvel
