#pragma once

#include <exception>
#include <string>

namespace ostrevan::system {

/// The text of a failure for the user. Those of the standard library, which speak of functions, give the path and the
/// reason; all others their own text.
std::string failure_text(const std::exception& failure);

}  // namespace ostrevan::system
