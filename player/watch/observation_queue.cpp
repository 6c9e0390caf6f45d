#include "player/watch/observation_queue.h"

namespace ostrevan::watch {

void observation_queue::push(std::string player, news what) {
    // Rests while the machine sleeps, on Linux.
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    const std::lock_guard lock(mutex_);
    waiting_.push_back({std::move(player), now.count(), std::move(what)});
    changed_.notify_one();
}

std::optional<observation> observation_queue::pop(std::chrono::milliseconds time) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, time, [this] { return !waiting_.empty(); })) return std::nullopt;
    auto first = std::move(waiting_.front());
    waiting_.pop_front();
    return first;
}

}  // namespace ostrevan::watch
