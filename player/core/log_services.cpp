#include "player/core/log_services.h"

#include <cstddef>
#include <fstream>

namespace ostrevan {

void console_impl::print(const char* line) {
    const std::lock_guard lock(mutex_);
    out_(line);
}

void crash_log_impl::on_event(const char* line) {
    constexpr std::size_t kept_events = 200;
    const std::lock_guard lock(mutex_);
    if (events_.size() == kept_events) events_.erase(events_.begin());
    events_.emplace_back(line);
}

void crash_log_impl::write_crash(const char* text) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        std::ofstream file(path_, std::ios::app);
        for (const auto& line : events_) file << line << '\n';
        file << "Bug check: " << text << '\n';
    } catch (...) {  // the process ends with the text on standard error in any case
    }
}

std::vector<std::string> crash_log_impl::events() const {
    const std::lock_guard lock(mutex_);
    return events_;
}

}  // namespace ostrevan
