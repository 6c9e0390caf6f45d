#include "player/titleformat/integer.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace ostrevan::titleformat {

std::optional<std::int64_t> leading_integer(std::string_view text) noexcept {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);

    std::int64_t value = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        using limits = std::numeric_limits<std::int64_t>;
        return text.front() == '-' ? limits::min() : limits::max();
    }
    return value;
}

}  // namespace ostrevan::titleformat
