#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <utility>

namespace ostrevan::index {

/// Lets one writer in at a time, in the order in which they asked: a worker that writes one batch after another cannot keep
/// the main thread out.
class write_gate {
public:
    /// Being inside. Given up on the thread that entered.
    class pass {
    public:
        explicit pass(write_gate& gate) noexcept : gate_(&gate) {}
        pass(pass&& other) noexcept : gate_(std::exchange(other.gate_, nullptr)) {}
        pass& operator=(pass&&) = delete;
        ~pass() { leave(); }
        void leave() noexcept;

    private:
        write_gate* gate_;
    };

    /// Waits for its turn. Throws std::logic_error when this thread is inside already, as it would wait for ever.
    [[nodiscard]] pass enter();

private:
    std::mutex mutex_;
    std::condition_variable turn_;
    std::uint64_t next_ticket_ = 0;
    std::uint64_t serving_ = 0;
    std::thread::id inside_;
};

}  // namespace ostrevan::index
