#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace ostrevan::index {

/// The caller broke a rule of transactions: a second one on a thread, or a use after the commit.
class misuse : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

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

    /// Waits for its turn. Throws `misuse` when this thread is inside already: it would wait forever.
    [[nodiscard]] pass enter();

private:
    std::mutex mutex_;
    std::condition_variable turn_;
    std::uint64_t next_ticket_ = 0;
    std::uint64_t serving_ = 0;
    std::thread::id inside_;
};

}  // namespace ostrevan::index
