#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace quorvel {

/// Keys by the serial of the snapshot from which they were computed. Serials are consecutive numbers, so this is an array
/// that grows by blocks, 8 bytes a snapshot. Never forgets. [any-thread], without waiting.
class key_memory {
public:
    constexpr key_memory() = default;
    key_memory(const key_memory&) = delete;
    key_memory& operator=(const key_memory&) = delete;
    ~key_memory();

    /// 0 when it is not known.
    [[nodiscard]] std::uint64_t find(std::uint64_t serial) const noexcept {
        if (serial >= most) return 0;
        const auto* const in = blocks_[serial / block_size].load(std::memory_order_acquire);
        return in == nullptr ? 0 : (*in)[serial % block_size].load(std::memory_order_relaxed);
    }
    /// A serial that is too large is not remembered, nor is key 0.
    void set(std::uint64_t serial, std::uint64_t key);

private:
    static constexpr std::size_t block_size = 65'536;
    static constexpr std::size_t block_count = 4096;
    static constexpr std::uint64_t most = std::uint64_t{block_size} * block_count;
    using block = std::array<std::atomic<std::uint64_t>, block_size>;

    std::array<std::atomic<block*>, block_count> blocks_{};
};

}  // namespace quorvel
