#pragma once

#include <windows.h>

namespace quorvel {

/// The module that this code is in: the component's library, or the program that its objects are linked into. [any-thread]
[[nodiscard]] HINSTANCE this_module() noexcept;

}  // namespace quorvel
