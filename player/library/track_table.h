#pragma once

#include <cstdint>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "player/library/track.h"

namespace ostrevan::library {

/// The handles of all tracks met so far, one per location. They live as long as the table. [any-thread]
class track_table {
public:
    /// Returns the handle of a location, and makes it the first time.
    track_ptr obtain(std::string_view path, std::uint32_t subsong = 0);
    /// Null when the location was never obtained.
    [[nodiscard]] track_ptr find(std::string_view path, std::uint32_t subsong = 0) const;

    void reserve(std::size_t tracks);

private:
    /// Views the location inside the handle.
    struct key {
        std::string_view path;
        std::uint32_t subsong;
        bool operator==(const key&) const = default;
    };
    struct key_hash {
        std::size_t operator()(const key& value) const noexcept {
            return std::hash<std::string_view>()(value.path) ^ value.subsong * 0x9E3779B97F4A7C15ULL;
        }
    };

    mutable std::mutex mutex_;
    std::unordered_map<key, track_ptr, key_hash> tracks_;
};

}  // namespace ostrevan::library
