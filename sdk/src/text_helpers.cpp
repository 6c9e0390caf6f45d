#include "ostrevan/text_helpers.h"

#include <atomic>
#include <system_error>

#include "ostrevan/core_api.h"
#include "ostrevan/crash_log.h"

namespace ostrevan {
namespace {

/// The player's table, fetched once, because a key lower-cases every character of a track's tags.
const std::uint16_t* cached_table() noexcept {
    static constinit std::atomic<const std::uint16_t*> table{nullptr};
    const auto* known = table.load(std::memory_order_acquire);
    if (known != nullptr) return known;
    if (const auto helper = find_service<text_helper_service>()) known = helper->lower_table();
    table.store(known, std::memory_order_release);
    return known;
}

}  // namespace

std::uint32_t lower_beyond_ascii(std::uint32_t code_point) noexcept {
    if (code_point < text_helper_service::lower_table_size)
        if (const auto* table = cached_table()) return table[code_point];
    if (const auto helper = find_service<text_helper_service>()) return helper->lower(code_point);
    return code_point;
}

void uPrintCrashInfo_OnEvent(const char* line) noexcept {
    try {
        if (const auto log = find_service<crash_log_service>()) log->on_event(line);
    } catch (...) {  // a failing log must not stop what it reports
    }
}

std::string uFormatSystemErrorMessage(int error) { return std::system_category().message(error); }

}  // namespace ostrevan
