#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace ostrevan::library {

/// A list that is made on first use, and shared until its source changes. [any-thread]
template <typename Each>
class kept_list {
public:
    using pointer = std::shared_ptr<const std::vector<Each>>;

    /// `state` must be another number after each change of the source.
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
