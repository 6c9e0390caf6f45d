#include "player/services/text_helper_service.h"

#include <utf8proc.h>

#include <array>

namespace ostrevan::services {
namespace {

std::uint32_t lower_by_library(std::uint32_t code_point) noexcept {
    constexpr std::uint32_t last_code_point = 0x10FFFF;
    if (code_point > last_code_point) return code_point;
    return static_cast<std::uint32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code_point)));
}

/// Every lower-case form of this range is below 0x10000. Lives as long as the process, because components keep its address.
const auto& table() noexcept {
    static const auto made = [] {
        std::array<std::uint16_t, text_helper_service::lower_table_size> result{};
        for (std::uint32_t i = 0; i < result.size(); ++i) result[i] = static_cast<std::uint16_t>(lower_by_library(i));
        return result;
    }();
    return made;
}

}  // namespace

text_helper_service_impl::text_helper_service_impl() { (void)table(); }

std::uint32_t text_helper_service_impl::lower(std::uint32_t code_point) const noexcept {
    return code_point < lower_table_size ? table()[code_point] : lower_by_library(code_point);
}

const std::uint16_t* text_helper_service_impl::lower_table() const noexcept { return table().data(); }

}  // namespace ostrevan::services
