#pragma once

#include <atomic>

#include "player/system/descriptor.h"

namespace ostrevan::system {

/// Wakes a thread that waits in `poll`. [any-thread]
class wake_event {
public:
    /// Throws std::system_error when the process has no descriptor left.
    wake_event();
    void set() noexcept;
    void clear() noexcept;
    [[nodiscard]] bool is_set() const noexcept { return is_set_; }
    /// Readable while it is set.
    [[nodiscard]] int file() const noexcept { return file_.get(); }

private:
    descriptor file_;
    std::atomic<bool> is_set_ = false;
};

}  // namespace ostrevan::system
