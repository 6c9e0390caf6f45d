#include "player/library/track.h"

#include <thread>
#include <utility>

namespace ostrevan::library {

class track::spin_guard {
public:
    explicit spin_guard(const track& owner) noexcept : lock_(owner.lock_) {
        while (lock_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    ~spin_guard() { lock_.clear(std::memory_order_release); }
    spin_guard(const spin_guard&) = delete;
    spin_guard& operator=(const spin_guard&) = delete;

private:
    std::atomic_flag& lock_;
};

metadb_info_ptr make_snapshot(file_info info) { return service_new<info_snapshot>(std::move(info)); }

metadb_info_ptr track::info() const {
    const spin_guard guard(*this);
    return info_;
}

bool track::has_info() const noexcept {
    const spin_guard guard(*this);
    return static_cast<bool>(info_);
}

void track::publish(metadb_info_ptr snapshot) {
    const spin_guard guard(*this);
    // The old snapshot is destroyed by the caller's pointer, after the lock is released.
    std::swap(info_, snapshot);
}

}  // namespace ostrevan::library
