#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <thread>

namespace ostrevan::indexing {

/// A lock for data that is read all the time and rarely changed. Every reading thread takes a flag of its own on a cache
/// line of its own, so readers never disturb each other; the writer takes all flags. Both sides spin, so either may hold
/// the lock for a few hundred microseconds at most. It does not nest.
class reader_lock {
    struct alignas(128) slot {
        std::atomic<bool> taken{false};
    };

public:
    class read_guard {
    public:
        explicit read_guard(std::atomic<bool>& flag) noexcept : flag_(flag) { take(flag_); }
        ~read_guard() { flag_.store(false, std::memory_order_release); }
        read_guard(const read_guard&) = delete;
        read_guard& operator=(const read_guard&) = delete;

    private:
        std::atomic<bool>& flag_;
    };

    class write_guard {
    public:
        explicit write_guard(reader_lock& lock) noexcept : lock_(lock) {
            for (slot& each : lock_.slots_) take(each.taken);
        }
        ~write_guard() {
            for (slot& each : lock_.slots_) each.taken.store(false, std::memory_order_release);
        }
        write_guard(const write_guard&) = delete;
        write_guard& operator=(const write_guard&) = delete;

    private:
        reader_lock& lock_;
    };

    [[nodiscard]] read_guard read() noexcept { return read_guard(slots_[slot_of_thread()].taken); }
    [[nodiscard]] write_guard write() noexcept { return write_guard(*this); }

private:
    static constexpr std::size_t slot_count = 16;  // more threads than this share slots, which is slower but right

    static void take(std::atomic<bool>& flag) noexcept {
        constexpr int spins_before_yield = 100;
        for (int spins = 0; flag.exchange(true, std::memory_order_acquire);)
            while (flag.load(std::memory_order_relaxed))
                if (++spins > spins_before_yield) std::this_thread::yield();
    }

    static std::size_t slot_of_thread() noexcept {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t slot = threads.fetch_add(1, std::memory_order_relaxed) % slot_count;
        return slot;
    }

    std::array<slot, slot_count> slots_;
};

}  // namespace ostrevan::indexing
