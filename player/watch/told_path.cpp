#include "player/watch/told_path.h"

#include <charconv>
#include <filesystem>
#include <optional>
#include <system_error>

#include "nuv/text.h"

namespace ostrevan::watch {
namespace {

constexpr std::string_view file_protocol = "file://";

bool exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

std::string percent_decoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const auto* const digits = text.data() + i + 1;
        const bool is_code =
            text[i] == '%' && text.size() - i > 2 && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        decoded += is_code ? static_cast<char>(byte) : text[i];
        if (is_code) i += 2;
    }
    return decoded;
}

/// The number in "track0003" or "track03.flac".
std::optional<std::uint32_t> track_number(const std::string& name) {
    constexpr std::string_view word = "track";
    std::uint32_t number = 0;
    if (!name.starts_with(word)) return std::nullopt;
    const auto result = std::from_chars(name.data() + word.size(), name.data() + name.size(), number);
    if (result.ec != std::errc()) return std::nullopt;
    return number;
}

}  // namespace

std::optional<told_path> path_of(std::string_view location) {
    std::string path(location);
    if (nuv::equal_ascii_nocase(location.substr(0, file_protocol.size()), file_protocol)) {
        // A host may stand before the path: "file://localhost/music".
        const auto start = location.find('/', file_protocol.size());
        if (start == std::string_view::npos) return std::nullopt;
        path = location.substr(start);
        if (auto decoded = percent_decoded(path); exists(decoded) || !exists(path)) path = std::move(decoded);
    }
    if (!path.starts_with('/')) return std::nullopt;
    if (!exists(path)) {
        const std::filesystem::path inside(path);
        const auto number = track_number(inside.filename().string());
        if (number && exists(inside.parent_path().string())) return told_path{inside.parent_path().string(), number};
    }
    return told_path{std::move(path), std::nullopt};
}

}  // namespace ostrevan::watch
