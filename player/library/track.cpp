#include "player/library/track.h"

#include <thread>
#include <utility>

#include "player/library/stored_infos.h"

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
    stored_infos* stored = nullptr;
    {
        const spin_guard guard(*this);
        if (info_ || stored_ == nullptr) return info_;
        stored = stored_;
    }
    auto read = stored->read(number_);
    const spin_guard guard(*this);
    return info_ || stored_ == nullptr ? info_ : read;  // something newer may have been published meanwhile
}

std::uint64_t track::info_serial() const noexcept {
    const spin_guard guard(*this);
    if (info_) return info_->serial();
    return stored_ == nullptr ? 0 : stored_->serial_of(number_);
}

void track::publish(metadb_info_ptr snapshot) {
    const spin_guard guard(*this);
    // The old snapshot is destroyed by the caller's pointer, after the lock is released.
    std::swap(info_, snapshot);
}

void track::leave_stored(stored_infos& in, std::uint32_t number) {
    const spin_guard guard(*this);
    stored_ = &in;
    number_ = number;
}

void track::forget_stored() {
    const spin_guard guard(*this);
    stored_ = nullptr;
}

void track::hold(metadb_info_ptr stored) {
    const spin_guard guard(*this);
    if (!info_ && stored_ != nullptr) std::swap(info_, stored);
}

void track::hold_info() {
    hold(info());
    forget_stored();
}

}  // namespace ostrevan::library
