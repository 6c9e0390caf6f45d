#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace ostrevan::library {

/// A list that is made when somebody needs it, and shared until what it is made of has changed. [any-thread]
template <typename Each>
class kept_list {
public:
    using pointer = std::shared_ptr<const std::vector<Each>>;

    /// `state` is another number after each change.
    template <typename Make>
    pointer get(std::uint64_t state, Make make) {
        const std::lock_guard lock(mutex_);
        if (!list_ || state_ != state) list_ = std::make_shared<const std::vector<Each>>(make());
        state_ = state;
        return list_;
    }
    /// Forgets the list and returns it.
    pointer take() {
        const std::lock_guard lock(mutex_);
        return std::move(list_);
    }

private:
    std::mutex mutex_;
    std::uint64_t state_ = 0;
    pointer list_;
};

}  // namespace ostrevan::library
