#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <utility>

namespace ostrevan::index {

/// Admits one writer at a time, in the order of their requests, so that a worker that writes batch after batch cannot keep
/// the main thread waiting.
class write_gate {
public:
    /// Admission to the gate. Released on the thread that entered.
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

    /// Waits for its turn. Throws std::logic_error when this thread is inside already: it would wait forever.
    [[nodiscard]] pass enter();

private:
    std::mutex mutex_;
    std::condition_variable turn_;
    std::uint64_t next_ticket_ = 0;
    std::uint64_t serving_ = 0;
    std::thread::id inside_;
};

}  // namespace ostrevan::index
