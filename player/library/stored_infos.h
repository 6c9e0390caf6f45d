#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "player/library/track.h"
#include "player/sqlite/database.h"

namespace ostrevan::library {

class library_store;

/// Information about tracks that stays in the library's database until somebody asks for it. It is read in blocks of tracks
/// that are neighbours there, over a connection of its own. At first only the latest blocks are kept, because most commands
/// look at every track once. A block that is read for the second time stays with its handles.
///
/// Whoever changes or removes a row calls `track::hold_info` first.
class stored_infos {
public:
    /// `on_failure` receives the first failure to read. [any-thread]
    stored_infos(const library_store& of, std::function<void(const std::string&)> on_failure);
    /// The handles forget what they have not read.
    ~stored_infos();
    stored_infos(const stored_infos&) = delete;
    stored_infos& operator=(const stored_infos&) = delete;

    /// For a handle without information, which must live as long as this. In the order of the database, before others may
    /// use the handle. Returns the serial of the information.
    std::uint64_t add(std::int64_t file, track& handle);

    // [any-thread]
    /// Empty when the stored information is damaged, or cannot be read.
    [[nodiscard]] metadb_info_ptr read(std::uint32_t number);
    [[nodiscard]] std::uint64_t serial_of(std::uint32_t number) const noexcept;
    /// Whether something could not be read: tracks without information may have some.
    [[nodiscard]] bool has_failed() const noexcept { return has_failed_; }
    /// From now on nothing is read.
    void close();

private:
    static constexpr std::size_t block_size = 256;
    static constexpr unsigned kept_from = 2;

    struct place {
        std::int64_t file;
        track* handle;
    };
    struct reads {
        std::uint64_t first_serial;
        unsigned times_read = 0;
    };
    using infos = std::vector<metadb_info_ptr>;
    struct recent {
        std::size_t block;
        std::shared_ptr<const infos> read;
        std::uint64_t used = 0;  // a moment of `clock_`
    };

    [[nodiscard]] std::shared_ptr<const infos> find_recent(std::size_t which);
    void remember(recent latest);
    [[nodiscard]] infos read_block(std::size_t which, bool& is_whole);

    const std::function<void(const std::string&)> on_failure_;
    std::vector<place> places_;
    std::vector<reads> blocks_;

    std::mutex reading_;  // guards the connection and the counts of the blocks
    std::unique_ptr<sqlite::database> database_;
    sqlite::statement read_;
    std::atomic<bool> has_failed_ = false;

    std::mutex recent_mutex_;
    std::vector<recent> recent_;
    std::uint64_t clock_ = 0;
};

}  // namespace ostrevan::library
