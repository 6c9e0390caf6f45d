#pragma once

#include <string>

namespace quorvel {

/// The path of the component's own library file as it was loaded, UTF-8. [any-thread]
[[nodiscard]] std::string module_path();

}  // namespace quorvel
