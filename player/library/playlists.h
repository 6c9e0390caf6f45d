#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ostrevan/track.h"
#include "player/sqlite/database.h"

namespace ostrevan::library {

/// Named lists of tracks in the user's order, stored in the library's database. A list may hold a location several times,
/// and locations outside the library. [any-thread] Every function throws sqlite::error.
class playlists {
public:
    explicit playlists(sqlite::database& database) noexcept : database_(database) {}

    /// In byte order.
    [[nodiscard]] std::vector<std::string> names() const;
    /// Empty when there is no playlist of that name.
    [[nodiscard]] std::optional<std::vector<playable_location>> entries(const std::string& name) const;
    /// Returns false and changes nothing when the name is taken.
    bool create(const std::string& name, std::span<const playable_location> entries);
    /// Puts these entries in the place of those of the playlist. Returns false when there is none.
    bool replace(const std::string& name, std::span<const playable_location> entries);
    /// Lets `work` change the entries. Returns false when there is no such playlist.
    bool change(const std::string& name, const std::function<void(std::vector<playable_location>& entries)>& work);
    /// Returns false and changes nothing when the new name is taken.
    bool rename(const std::string& name, const std::string& new_name);
    /// Returns false when there is none.
    bool remove(const std::string& name);

private:
    [[nodiscard]] std::optional<std::int64_t> find(const std::string& name) const;
    void insert(std::int64_t id, std::span<const playable_location> entries);

    sqlite::database& database_;
};

}  // namespace ostrevan::library
