#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "nuv/guid.h"

namespace ostrevan::index {

/// Changes of records of one index, in order. The bytes share one buffer, because a batch may hold a million of them.
class change_list {
public:
    struct change {
        std::uint64_t key;
        std::size_t offset;
        std::uint32_t size;  // or `erased`
    };

    void put(std::uint64_t key, std::span<const std::byte> data) {
        changes_.push_back({key, bytes_.size(), static_cast<std::uint32_t>(data.size())});
        bytes_.insert(bytes_.end(), data.begin(), data.end());
    }
    /// For changes of the same number and size.
    void reserve(const change_list& like) {
        changes_.reserve(like.changes_.size());
        bytes_.reserve(like.bytes_.size());
    }
    void erase(std::uint64_t key) { changes_.push_back({key, 0, erased}); }
    void clear() noexcept {
        changes_.clear();
        bytes_.clear();
    }

    [[nodiscard]] const std::vector<change>& changes() const noexcept { return changes_; }
    [[nodiscard]] bool empty() const noexcept { return changes_.empty(); }
    /// The new bytes, or nothing for an erased record.
    [[nodiscard]] std::optional<std::span<const std::byte>> data(const change& of) const noexcept {
        if (of.size == erased) return std::nullopt;
        return std::span(bytes_).subspan(of.offset, of.size);
    }

private:
    static constexpr std::uint32_t erased = std::numeric_limits<std::uint32_t>::max();

    std::vector<change> changes_;
    std::vector<std::byte> bytes_;
};

/// An index without its records.
struct catalog_entry {
    std::int64_t id = 0;  // its number inside the database, from 1
    nuv::guid guid;
    std::optional<std::uint64_t> retention;  // 100 ns; nothing when the index is not registered
    std::string owner{};                     // the component that may register it; empty until the first registration
};

/// Changed records of one index.
struct record_changes {
    std::int64_t index_id;
    std::int64_t seen;  // seconds since 1970
    change_list list;
    std::int64_t operation = 0;  // the journal's number of the commit; 0 when it is not kept
    change_list before{};        // the record before each change of `list`
};

/// A commit as the journal keeps it.
struct operation_entry {
    std::int64_t id = 0;      // from 1, ascending
    std::int64_t act = 0;     // the first commit of the same act
    std::int64_t time = 0;    // seconds since 1970
    std::int64_t undoes = 0;  // the act that this one takes back; 0 for none
    std::string cause{};
};

/// A track that somebody listened to.
struct listen {
    std::int64_t id = 0;    // ascending; given by the database
    std::int64_t time = 0;  // seconds since 1970, of the end
    std::string path{};
    std::uint32_t subsong = 0;
    double seconds = 0;       // heard
    std::string player{};     // another program; empty for this one
    bool is_counted = false;  // as a play; otherwise it was skipped
    std::int64_t act = 0;     // the one that counted it; 0 for none
    struct key {
        nuv::guid index;
        std::uint64_t key;
    };
    std::vector<key> keys{};  // of the track, in each index
};

/// What a record belongs to, for the time after its track is gone.
struct known_track {
    nuv::guid index;
    std::uint64_t key = 0;
    std::string artist{}, album{}, title{};
    std::string path{};
    std::uint32_t subsong = 0;
    std::optional<std::uint64_t> successor{};  // the key after an edit of its tags, which the record has followed

    bool operator==(const known_track&) const = default;
};

/// Keys whose tracks have been seen in the library.
struct seen_keys {
    std::int64_t index_id;
    std::int64_t now;  // seconds since 1970
    std::vector<std::uint64_t> keys;
};

struct known_tracks {
    std::vector<known_track> tracks;
    std::int64_t operation = 0;  // the journal keeps changed successors with this commit; 0 when it does not
};

/// One step of work for the database.
using index_job = std::variant<catalog_entry, operation_entry, record_changes, seen_keys, listen, known_tracks>;

}  // namespace ostrevan::index
