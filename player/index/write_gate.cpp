#include "player/index/write_gate.h"

namespace ostrevan::index {

write_gate::pass write_gate::enter() {
    std::unique_lock lock(mutex_);
    if (inside_ == std::this_thread::get_id())
        throw misuse("This thread has an index transaction open already; finish it first");
    const std::uint64_t ticket = next_ticket_++;
    turn_.wait(lock, [&] { return serving_ == ticket; });
    inside_ = std::this_thread::get_id();
    return pass(*this);
}

void write_gate::pass::leave() noexcept {
    write_gate* gate = std::exchange(gate_, nullptr);
    if (gate == nullptr) return;
    const std::scoped_lock lock(gate->mutex_);
    gate->inside_ = {};
    ++gate->serving_;
    gate->turn_.notify_all();
}

}  // namespace ostrevan::index
