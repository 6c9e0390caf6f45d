#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/crash_log.h"

namespace ostrevan::services {

/// Remembers events, and writes them with a bug check's text into `crash.log` of the profile.
class crash_log_service_impl : public crash_log_service {
public:
    explicit crash_log_service_impl(std::string path) : path_(std::move(path)) {}
    void on_event(const char* line) override;
    /// Appends to the log the events, the text, the time and the file of the code that failed. Ignores failures, since the
    /// process is ending.
    void write_crash(const char* text, const std::string& module) noexcept;
    [[nodiscard]] std::vector<std::string> events() const;

private:
    const std::string path_;
    mutable std::mutex mutex_;
    std::vector<std::string> events_;
};

}  // namespace ostrevan::services
