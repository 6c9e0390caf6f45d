#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace ostrevan::indexing {

/// Records of one index in memory. Blobs of the usual size lie inside the table, so that finding one costs one cache miss;
/// others, and the one under key 0 (which marks a free slot), are kept apart. 256 shards grow on their own, so that no
/// single insertion moves more than a 256th of the records. Not synchronised.
class record_table {
public:
    static constexpr std::size_t inline_size = 40;
    using bytes = std::span<const std::byte>;

    /// Valid until the next change.
    [[nodiscard]] std::optional<bytes> find(std::uint64_t key) const noexcept;

    /// Inserts or replaces. Answers how many other records had to be moved, which is what it costs beyond a few cache
    /// misses.
    std::size_t put(std::uint64_t key, bytes data);
    void erase(std::uint64_t key) noexcept;

    [[nodiscard]] static constexpr std::size_t shard_count() noexcept { return 256; }
    /// Appends the keys of one shard, in no order.
    void append_keys(std::size_t shard_index, std::vector<std::uint64_t>& keys) const;

private:
    struct slot {
        std::uint64_t key;
        std::array<std::byte, inline_size> data;
    };
    using odd_records = std::unordered_map<std::uint64_t, std::vector<std::byte>>;
    struct shard {
        std::unique_ptr<slot[]> slots;
        std::uint32_t capacity = 0;
        std::uint32_t used = 0;
        std::unique_ptr<odd_records> odd;

        /// Where the search for a key begins.
        [[nodiscard]] std::uint32_t home(std::uint64_t hash) const noexcept {
            return static_cast<std::uint32_t>((hash << 8 >> 32) * capacity >> 32);
        }
        [[nodiscard]] std::uint32_t after(std::uint32_t position) const noexcept {
            return position + 1 == capacity ? 0 : position + 1;
        }
        /// The slot of the key, or the free slot where it belongs. Needs a free slot.
        [[nodiscard]] slot& locate(std::uint64_t key) const noexcept;
        void grow();
        void erase_inline(std::uint64_t key) noexcept;
    };

    /// Spreads keys that are no hashes, such as numbers counted up.
    static std::uint64_t hash_of(std::uint64_t key) noexcept { return (key ^ key >> 32) * 0x9E3779B97F4A7C15ULL; }
    static std::size_t shard_of(std::uint64_t hash) noexcept { return hash >> 56; }

    std::array<shard, 256> shards_;
};

inline record_table::slot& record_table::shard::locate(std::uint64_t key) const noexcept {
    std::uint32_t position = home(hash_of(key));
    while (slots[position].key != key && slots[position].key != 0) position = after(position);
    return slots[position];
}

inline std::optional<record_table::bytes> record_table::find(std::uint64_t key) const noexcept {
    const shard& in = shards_[shard_of(hash_of(key))];
    if (in.capacity != 0 && key != 0) {
        const slot& found = in.locate(key);
        if (found.key == key) return bytes(found.data);
    }
    if (in.odd != nullptr)
        if (const auto found = in.odd->find(key); found != in.odd->end()) return bytes(found->second);
    return std::nullopt;
}

}  // namespace ostrevan::indexing
