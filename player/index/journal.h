#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "nuv/guid.h"
#include "player/index/index_changes.h"
#include "player/index/record_change.h"
#include "player/index/successors.h"
#include "player/sqlite/database.h"

namespace ostrevan::index {

/// What one cause has changed, in one commit or several.
struct act {
    std::int64_t id = 0;
    std::int64_t time = 0;  // seconds since 1970, of the first commit
    std::string cause{};
    std::optional<std::int64_t> undoes{};     // the act that it takes back
    std::optional<std::int64_t> undone_by{};  // the last act that takes it back, unless that one has been taken back
    bool operator==(const act&) const = default;
};

/// The changes of one index, by key; each from before the act to after it.
struct index_changes {
    nuv::guid index;
    std::vector<record_change> records;
};

/// A former key of a track, whose successor an act changed.
struct successor_change {
    known_track now;  ///< what is noted of the key
    std::optional<std::uint64_t> before{}, after{};
};

/// One change of one record.
struct change_of_record {
    act by;
    record_change change;
};

/// A listen as summaries of many need it.
struct brief_listen {
    std::int64_t time = 0;               // seconds since 1970, of the end
    std::optional<std::uint64_t> key{};  // of its track, in the index asked for
    std::string_view path{};
    std::uint32_t subsong = 0;
    bool is_counted = false;  // as a play; otherwise it was skipped
};

/// Reads the journal of an index database through a connection of its own; what has been saved before it was made is
/// visible. Throws sqlite::error, also for damage. Used by one thread at a time.
class journal {
public:
    explicit journal(const std::filesystem::path& database);

    /// The newest first.
    [[nodiscard]] std::vector<act> latest(std::size_t at_most);
    [[nodiscard]] std::optional<act> find(std::int64_t id);
    [[nodiscard]] std::vector<index_changes> changes_of(std::int64_t act_id);
    /// The newest first.
    [[nodiscard]] std::vector<change_of_record> changes_of(const nuv::guid& index, std::uint64_t key);

    /// The listens of the tracks with this key, the newest first. `keys` is empty.
    [[nodiscard]] std::vector<listen> listens_of(const nuv::guid& index, std::uint64_t key);
    /// Visits all listens in the order in which they were noted, except for plays that have been taken back.
    void for_each_listen(const nuv::guid& index, const std::function<void(const brief_listen&)>& visit);

    /// What is known of the tracks of records, by key as a signed number.
    [[nodiscard]] std::vector<known_track> known_tracks(const nuv::guid& index);
    [[nodiscard]] successors successors_in(const nuv::guid& index);
    [[nodiscard]] std::vector<successor_change> successor_changes_of(std::int64_t act_id);

private:
    [[nodiscard]] std::vector<act> acts(const char* condition, std::int64_t value, std::size_t at_most);
    /// Which act takes which back, the last one of those that have not been taken back themselves. Read once.
    [[nodiscard]] const std::map<std::int64_t, std::int64_t>& taken_back();
    [[nodiscard]] nuv::guid guid_of(std::int64_t index_id);
    [[nodiscard]] std::vector<record_change> parsed(std::span<const std::byte> bytes) const;

    sqlite::database database_;
    std::optional<std::map<std::int64_t, std::int64_t>> taken_back_;
};

}  // namespace ostrevan::index
