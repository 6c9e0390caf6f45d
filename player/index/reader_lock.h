#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <thread>

namespace ostrevan::index {

/// A lock for data that is read often and changed rarely. Each reading thread has a flag on its own cache line, so readers
/// never contend; a writer takes all flags. Readers wait while a writer wants the lock, and the next writer lets waiting
/// readers go first, so that neither side starves. Waiting is yielding: hold the lock for a few hundred microseconds at
/// most. It is not recursive.
class reader_lock {
    struct alignas(128) slot {
        std::atomic<bool> taken{false};
    };

public:
    class read_guard {
    public:
        explicit read_guard(reader_lock& lock) noexcept : flag_(lock.slots_[slot_of_thread()].taken) {
            if (lock.writer_wants_.load(std::memory_order_relaxed) || !try_take(flag_)) lock.wait_to_read(flag_);
        }
        ~read_guard() { flag_.store(false, std::memory_order_release); }
        read_guard(const read_guard&) = delete;
        read_guard& operator=(const read_guard&) = delete;

    private:
        std::atomic<bool>& flag_;
    };

    class write_guard {
    public:
        explicit write_guard(reader_lock& lock) : lock_(lock), only_writer_(lock.writers_) {
            while (lock_.waiting_readers_.load(std::memory_order_relaxed) != 0) std::this_thread::yield();
            lock_.writer_wants_.store(true, std::memory_order_relaxed);
            for (slot& each : lock_.slots_)
                while (!try_take(each.taken)) std::this_thread::yield();
        }
        ~write_guard() {
            lock_.writer_wants_.store(false, std::memory_order_relaxed);
            for (slot& each : lock_.slots_) each.taken.store(false, std::memory_order_release);
        }
        write_guard(const write_guard&) = delete;
        write_guard& operator=(const write_guard&) = delete;

    private:
        reader_lock& lock_;
        std::scoped_lock<std::mutex> only_writer_;
    };

    [[nodiscard]] read_guard read() noexcept { return read_guard(*this); }
    [[nodiscard]] write_guard write() { return write_guard(*this); }

private:
    static constexpr std::size_t slot_count = 16;  // further threads share slots, which is slower but correct

    static bool try_take(std::atomic<bool>& flag) noexcept { return !flag.exchange(true, std::memory_order_acquire); }

    void wait_to_read(std::atomic<bool>& flag) noexcept {
        waiting_readers_.fetch_add(1, std::memory_order_relaxed);
        while (writer_wants_.load(std::memory_order_relaxed) || !try_take(flag)) std::this_thread::yield();
        waiting_readers_.fetch_sub(1, std::memory_order_relaxed);
    }

    static std::size_t slot_of_thread() noexcept {
        static std::atomic<std::size_t> threads{0};
        thread_local const std::size_t slot = threads.fetch_add(1, std::memory_order_relaxed) % slot_count;
        return slot;
    }

    std::array<slot, slot_count> slots_;
    alignas(128) std::atomic<bool> writer_wants_{false};  // on a cache line that only writers change
    alignas(128) std::atomic<int> waiting_readers_{0};
    std::mutex writers_;
};

}  // namespace ostrevan::index
