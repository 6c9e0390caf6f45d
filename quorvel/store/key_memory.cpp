#include "quorvel/store/key_memory.h"

namespace quorvel {

key_memory::~key_memory() {
    for (auto& each : blocks_) delete each.load(std::memory_order_relaxed);
}

void key_memory::set(std::uint64_t serial, std::uint64_t key) {
    if (serial >= most) return;
    auto& place = blocks_[serial / block_size];
    auto* in = place.load(std::memory_order_acquire);
    if (in == nullptr) {
        auto made = std::make_unique<block>();
        // When another thread was first, its block is used.
        if (place.compare_exchange_strong(in, made.get(), std::memory_order_acq_rel)) in = made.release();
    }
    (*in)[serial % block_size].store(key, std::memory_order_relaxed);
}

}  // namespace quorvel
