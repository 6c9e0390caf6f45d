#include "ostrevan/clipboard.h"

#include "ostrevan/core_api.h"
#include "quorvel/platform/clipboard.h"

namespace quorvel::clipboard {

using ostrevan::clipboard_service;

bool has_format(const char* format) {
    const auto service = ostrevan::find_service<clipboard_service>();
    return service && service->has_format(format);
}

void set(const char* format, std::span<const std::uint8_t> bytes) {
    ostrevan::get_service<clipboard_service>()->set(format, bytes);
}

std::optional<std::vector<std::uint8_t>> get(const char* format) {
    const auto service = ostrevan::find_service<clipboard_service>();
    std::vector<std::uint8_t> bytes;
    if (!service || !service->get(format, bytes)) return std::nullopt;
    return bytes;
}

}  // namespace quorvel::clipboard
