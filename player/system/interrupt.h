#pragma once

#include <atomic>

namespace ostrevan::system {

/// Becomes true when the user or the system asks the player to end (Ctrl-C, SIGTERM). Long work checks it and stops at the
/// next consistent point. A second Ctrl-C ends the process at once.
std::atomic<bool>& interrupted() noexcept;

/// Installs the handlers. A closed pipe at the other end of standard output does not kill the process. [main-thread]
void handle_interrupts();

}  // namespace ostrevan::system
