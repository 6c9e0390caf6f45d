#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>

#include "ostrevan/console.h"

namespace ostrevan::services {

/// Passes on the lines of the console, one at a time.
class console_service_impl : public console_service {
public:
    using sink = std::function<void(const std::string& line)>;
    explicit console_service_impl(sink out) : out_(std::move(out)) {}
    void print(const char* line) override {
        const std::lock_guard lock(mutex_);
        out_(line);
    }

private:
    std::mutex mutex_;
    const sink out_;
};

}  // namespace ostrevan::services
