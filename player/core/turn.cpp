#include "player/core/turn.h"

#include <chrono>

#include "player/core/job.h"

namespace ostrevan::core {

bool turn::try_take() {
    const std::lock_guard lock(mutex_);
    return !std::exchange(is_taken_, true);
}

void turn::give_back() {
    const std::lock_guard lock(mutex_);
    is_taken_ = false;
}

std::optional<turn::holder> turn::take(const std::function<void()>& on_wait) {
    constexpr auto look_again = std::chrono::milliseconds(100);
    bool is_mine = try_take();
    if (!is_mine) {
        on_wait();
        job::current()->serve_until([&] { return (is_mine = try_take()) || is_stopping(); }, look_again);
    }
    if (!is_mine) return std::nullopt;
    return holder(*this);
}

}  // namespace ostrevan::core
