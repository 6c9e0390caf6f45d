#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "player/index/index_changes.h"
#include "player/index/journal_writer.h"
#include "player/sqlite/database.h"

namespace ostrevan::index {

/// A mark may be this many seconds older than the last sight of the track.
inline constexpr std::int64_t seen_slack = 24 * 60 * 60;

/// How the file is marked and made.
const sqlite::format& index_format() noexcept;

/// The database file for its one writing thread. Format: docs/file-formats.md. Throws sqlite::error.
class index_database {
public:
    /// Opens or creates the file. Writes nothing, not even on closing, until all of it has been read without error.
    index_database(const std::filesystem::path& path, std::chrono::milliseconds busy_timeout);

    [[nodiscard]] std::vector<catalog_entry> catalog();

    /// Passes all records to the visitor, a few thousand of one index at a time. Stops and returns false when the visitor
    /// returns false.
    bool load(const std::function<bool(std::int64_t index_id, const change_list& rows)>& visit);

    [[nodiscard]] bool is_read_only() const noexcept { return database_.is_read_only(); }
    [[nodiscard]] const std::string& path() const noexcept { return database_.path(); }

    /// Makes a backup unless there is one from today or there are no records. Returns whether it has; throws
    /// std::runtime_error.
    bool back_up_once_a_day();
    void back_up(std::string_view reason);
    /// Whether SQLite finds the file whole.
    [[nodiscard]] bool is_whole() const;
    /// Uses one durable transaction, for the journal as well. Returns false when the journal is damaged and was left out, as
    /// it is from then on.
    bool save(std::span<const index_job> jobs);
    /// The number of the last commit in the journal; 0 when it is damaged, which `save` then finds.
    [[nodiscard]] std::int64_t last_operation() const;
    /// As `journal_writer::trim`.
    void trim_journal(std::int64_t time, std::int64_t bytes);

private:
    void save_entry(const catalog_entry& entry);
    void save_records(std::span<const index_job> jobs);
    void save_all(std::span<const index_job> jobs);
    void save_journal(std::span<const index_job> jobs);
    void mark_seen(const seen_keys& seen);

    sqlite::database database_;
    sqlite::statement put_;
    std::optional<sqlite::statement> put_block_;  // made for the first block
    sqlite::statement erase_;
    journal_writer journal_;
    bool has_journal_ = true;
};

/// The same file for all other threads. Throws sqlite::error. [any-thread]
class index_reader {
public:
    index_reader(const std::filesystem::path& path, std::chrono::milliseconds busy_timeout);

    /// The size of the record, 0 when there is none. Copies what fits into the buffer.
    std::size_t read(std::int64_t index_id, std::uint64_t key, void* buffer, std::size_t capacity);
    /// As `sqlite::back_up`, without changes not saved yet.
    std::filesystem::path back_up(std::string_view reason, const std::filesystem::path& beside);
    /// Keys last seen before `time` (seconds since 1970).
    std::vector<std::uint64_t> seen_before(std::int64_t index_id, std::int64_t time);

private:
    std::mutex mutex_;
    sqlite::database database_;
    sqlite::statement read_;
};

}  // namespace ostrevan::index
