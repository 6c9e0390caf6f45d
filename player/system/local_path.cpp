#include "player/system/local_path.h"

#include "nuv/text.h"

namespace ostrevan::system {

std::string_view protocol_of(std::string_view path) noexcept {
    const auto end = path.find("://");
    return end == std::string_view::npos ? std::string_view{} : path.substr(0, end);
}

bool is_local_path(std::string_view path) noexcept {
    const auto protocol = protocol_of(path);
    return protocol.empty() || nuv::equal_ascii_nocase(protocol, "file");
}

std::string local_path(std::string_view path) {
    const auto protocol = protocol_of(path);
    return std::string(protocol.empty() ? path : path.substr(protocol.size() + std::string_view("://").size()));
}

}  // namespace ostrevan::system
