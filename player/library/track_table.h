#pragma once

#include <cstdint>
#include <mutex>
#include <string_view>
#include <vector>

#include "player/library/track.h"

namespace ostrevan::library {

/// The handles of all tracks met so far, one per location. They live as long as the table. [any-thread]
class track_table {
public:
    /// Returns the handle of a location, and makes it the first time.
    track_ptr obtain(std::string_view path, std::uint32_t subsong = 0);
    /// Adds a handle that was made elsewhere, with the hash of its path. Returns the one of its location, which may be
    /// another.
    track_ptr adopt(track_ptr made, std::uint32_t path_hash);
    /// Null when the location was never obtained.
    [[nodiscard]] track_ptr find(std::string_view path, std::uint32_t subsong = 0) const;

    void reserve(std::size_t tracks);
    /// Brings the place of a path without subsongs into the cache, for one that is adopted soon. Before others use the
    /// table.
    void prefetch(std::uint32_t path_hash) const noexcept {
        const std::size_t slot = hash_of(path_hash, 0) & (slots_.size() - 1);
        __builtin_prefetch(&hashes_[slot]);
        __builtin_prefetch(&slots_[slot]);
    }
    /// At the end of the process: forgets the handles without freeing them, which takes a second for a million.
    void leave_behind();

private:
    [[nodiscard]] static std::uint32_t hash_of(std::uint32_t path_hash, std::uint32_t subsong) noexcept;
    [[nodiscard]] std::size_t slot_of(std::string_view path, std::uint32_t subsong, std::uint32_t hash) const noexcept;
    void make_room(std::size_t tracks);

    mutable std::mutex mutex_;
    // Open addressing: null is a free slot. The number of slots is a power of two; at most three quarters are in use.
    std::vector<track_ptr> slots_ = std::vector<track_ptr>(8);
    std::vector<std::uint32_t> hashes_ = std::vector<std::uint32_t>(8);
    std::size_t used_ = 0;
};

}  // namespace ostrevan::library
