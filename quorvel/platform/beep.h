#pragma once

namespace quorvel {

/// The system's default beep. [main-thread]
void beep();

}  // namespace quorvel
