#pragma once

#include <mutex>
#include <optional>
#include <utility>

namespace ostrevan::terminal {

/// A state on its way to another thread, which needs only the latest. [any-thread]
template <typename State>
class latest {
public:
    /// Returns false when an earlier state was still there and has been replaced.
    bool put(State state) {
        const std::lock_guard lock(mutex_);
        return !std::exchange(state_, std::move(state));
    }
    /// There must be one.
    State take() {
        const std::lock_guard lock(mutex_);
        return *std::exchange(state_, std::nullopt);
    }

private:
    std::mutex mutex_;
    std::optional<State> state_;
};

}  // namespace ostrevan::terminal
