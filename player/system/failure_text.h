#pragma once

#include <exception>
#include <string>

namespace ostrevan::system {

/// What a failure is called before the user: of those of the standard library, which speak of functions, the path and the
/// reason; of all others their own text.
std::string failure_text(const std::exception& failure);

}  // namespace ostrevan::system
