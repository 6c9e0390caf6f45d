#include "player/services/crash_log_service.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <ctime>

#include "player/system/descriptor.h"

namespace ostrevan::services {

void crash_log_service_impl::on_event(const char* line) {
    constexpr std::size_t kept_events = 200;
    const std::lock_guard lock(mutex_);
    if (events_.size() == kept_events) events_.erase(events_.begin());
    events_.emplace_back(line);
}

void crash_log_service_impl::write_crash(const char* text, const std::string& module) noexcept {
    try {
        const std::lock_guard lock(mutex_);
        std::string lines;
        for (const auto& line : events_) lines += line + '\n';
        char time[32] = "";
        const std::time_t now = std::time(nullptr);
        if (std::tm local{}; ::localtime_r(&now, &local) != nullptr) std::strftime(time, sizeof time, "%F %T", &local);
        lines += std::string("Bug check: ") + text + " (" + module + ", " + time + ")\n";
        // A pipe of that name must not block the ending process.
        const system::descriptor file(
            ::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, 0600));
        if (file) (void)!::write(file.get(), lines.data(), lines.size());
    } catch (...) {  // the process ends with the text on standard error in any case
    }
}

std::vector<std::string> crash_log_service_impl::events() const {
    const std::lock_guard lock(mutex_);
    return events_;
}

}  // namespace ostrevan::services
