#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/console.h"
#include "ostrevan/crash_log.h"

namespace ostrevan {

/// Console lines go to whoever the front end names, one at a time.
class console_impl : public console_service {
public:
    using sink = std::function<void(const std::string& line)>;
    explicit console_impl(sink out) : out_(std::move(out)) {}
    void print(const char* line) override;

private:
    std::mutex mutex_;
    const sink out_;
};

/// Remembers events, and writes them with a bug check's text into `crash.log` of the profile.
class crash_log_impl : public crash_log_service {
public:
    explicit crash_log_impl(std::string path) : path_(std::move(path)) {}
    void on_event(const char* line) override;
    /// Appends to the log; whatever fails is let be, since the process is ending.
    void write_crash(const char* text) noexcept;
    [[nodiscard]] std::vector<std::string> events() const;

private:
    const std::string path_;
    mutable std::mutex mutex_;
    std::vector<std::string> events_;
};

}  // namespace ostrevan
