#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ostrevan::titleformat {

/// Two indented lines to print below a message: the text around a place, and a caret under that place. `position` is in
/// bytes and may be the end of the text. Control characters and malformed bytes are replaced.
[[nodiscard]] std::string point_at(std::string_view text, std::size_t position);

}  // namespace ostrevan::titleformat
