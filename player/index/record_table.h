#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace ostrevan::index {

/// Records of one index in memory. Records of the usual size are inside the table, others apart. One byte per slot, dense
/// enough for the processor's cache, guides the search, so that a lookup costs one cache miss and lookups overlap. There
/// are 256 shards, by the first byte of the key, that grow independently: with keys spread like digests, no insertion moves
/// more than a 256th of the records, and a pass in key order takes one shard at a time. Not synchronised.
class record_table {
public:
    static constexpr std::size_t inline_size = 40;
    using bytes = std::span<const std::byte>;

    /// `data()` is null when there is none. Valid until the next change.
    [[nodiscard]] bytes find(std::uint64_t key) const noexcept;

    /// Inserts or replaces. Returns how many other records had to be moved, the only cost beyond a few cache misses.
    std::size_t put(std::uint64_t key, bytes data);
    void erase(std::uint64_t key) noexcept;

    [[nodiscard]] static constexpr std::size_t shard_count() noexcept { return 256; }
    /// The only shard that may hold the key. Higher keys are in this shard or a later one.
    [[nodiscard]] static constexpr std::size_t shard_of(std::uint64_t key) noexcept { return key >> 56; }
    /// Appends the keys of one shard, unsorted.
    void append_keys(std::size_t shard_index, std::vector<std::uint64_t>& keys) const;

private:
    struct slot {
        std::uint64_t key;
        std::array<std::byte, inline_size> data;
    };
    /// With an extra byte in front, so that an empty record has an address.
    using odd_records = std::unordered_map<std::uint64_t, std::vector<std::byte>>;
    struct shard {
        std::unique_ptr<slot[]> slots;
        std::unique_ptr<std::uint8_t[]> tags;  // bits of the key's hash, 0 for a free slot
        std::uint32_t capacity = 0;
        std::uint32_t used = 0;
        std::unique_ptr<odd_records> odd;

        /// The slot at which the search for a key begins.
        [[nodiscard]] std::uint32_t home(std::uint64_t hash) const noexcept {
            return static_cast<std::uint32_t>((hash << 8 >> 32) * capacity >> 32);
        }
        [[nodiscard]] std::uint32_t after(std::uint32_t position) const noexcept {
            return position + 1 == capacity ? 0 : position + 1;
        }
        /// The slot of the key, or the free slot for it. Needs a free slot.
        [[nodiscard]] std::uint32_t locate(std::uint64_t key, std::uint64_t hash) const noexcept {
            const std::uint8_t tag = tag_of(hash);
            std::uint32_t position = home(hash);
            while (tags[position] != 0 && (tags[position] != tag || slots[position].key != key)) position = after(position);
            return position;
        }
        void grow();
        void erase_inline(std::uint64_t key) noexcept;
    };

    /// Spreads keys that are not hashes, such as consecutive numbers, within a shard.
    static std::uint64_t hash_of(std::uint64_t key) noexcept { return (key ^ key >> 32) * 0x9E3779B97F4A7C15ULL; }
    static std::uint8_t tag_of(std::uint64_t hash) noexcept {
        return std::max(static_cast<std::uint8_t>(hash >> 16), std::uint8_t{1});
    }

    std::array<shard, 256> shards_;
};

inline record_table::bytes record_table::find(std::uint64_t key) const noexcept {
    const std::uint64_t hash = hash_of(key);
    const shard& in = shards_[shard_of(key)];
    if (in.capacity != 0)
        if (const std::uint32_t position = in.locate(key, hash); in.tags[position] != 0) return in.slots[position].data;
    if (in.odd != nullptr)
        if (const auto found = in.odd->find(key); found != in.odd->end())
            return {found->second.data() + 1, found->second.size() - 1};
    return {};
}

}  // namespace ostrevan::index
