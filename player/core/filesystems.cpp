#include "player/core/filesystems.h"

#include <algorithm>
#include <string_view>

#include "nuv/text.h"

namespace ostrevan {
namespace {

constexpr std::string_view network_protocols[] = {"http", "https", "ftp", "ftps", "rtsp", "rtmp", "mms", "icy"};

/// What stands before "://"; empty for a plain path.
std::string_view protocol_of(std::string_view path) noexcept {
    const auto end = path.find("://");
    return end == std::string_view::npos ? std::string_view{} : path.substr(0, end);
}

}  // namespace

bool local_filesystem::is_our_path(const char* path) const noexcept {
    const auto protocol = protocol_of(path);
    return protocol.empty() || nuv::equal_ascii_nocase(protocol, "file");
}

bool network_filesystem::is_our_path(const char* path) const noexcept {
    return std::ranges::any_of(network_protocols,
                               [&](std::string_view known) { return nuv::equal_ascii_nocase(protocol_of(path), known); });
}

}  // namespace ostrevan
