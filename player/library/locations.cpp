#include "player/library/locations.h"

#include <charconv>
#include <filesystem>

#include "nuv/text.h"

namespace ostrevan::library {

std::string normal_path(std::string_view path) {
    constexpr std::string_view local = "file://";
    if (nuv::equal_ascii_nocase(path.substr(0, local.size()), local)) path.remove_prefix(local.size());
    else if (path.find("://") != std::string_view::npos) return std::string(path);
    if (path.empty()) return {};
    auto normal = std::filesystem::absolute(path).lexically_normal();
    if (!normal.has_filename()) normal = normal.parent_path();
    return normal.string();
}

playable_location parse_location(std::string_view text) {
    std::error_code error;
    const auto bar = text.rfind('|');
    if (bar == std::string_view::npos || std::filesystem::exists(std::filesystem::path(text), error))
        return {std::string(text), 0};
    std::uint32_t subsong = 0;
    const auto digits = text.substr(bar + 1);
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), subsong);
    if (problem != std::errc() || end != digits.data() + digits.size() || digits.empty()) return {std::string(text), 0};
    return {std::string(text.substr(0, bar)), subsong};
}

}  // namespace ostrevan::library
