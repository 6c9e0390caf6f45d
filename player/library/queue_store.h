#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "ostrevan/track.h"
#include "player/sqlite/database.h"

namespace ostrevan::library {

/// The last playback. The modes are the numbers of `playback::repeat_mode` and `playback::shuffle_mode`.
struct queue_state {
    std::size_t place = 0;  ///< of the current track
    double seconds = 0;     ///< into it
    int repeat = 0;
    int shuffle = 0;
    double volume = 100;
};

struct saved_queue {
    std::vector<playable_location> entries;
    /// The places in the order of playing.
    std::vector<std::uint32_t> round;
    queue_state state;
};

/// An entry of a list to be saved.
struct listed_entry {
    playable_location location;
    /// Its position in the list saved before. What is saved there holds then, since entries follow files that move.
    std::optional<std::size_t> position_before;
};

/// The queue of the player in the library's database, so that it survives a restart. [any-thread] Every function throws
/// sqlite::error.
class queue_store {
public:
    explicit queue_store(sqlite::database& database) noexcept : database_(database) {}

    [[nodiscard]] bool is_read_only() const noexcept { return database_.is_read_only(); }
    /// Empty when there is none.
    [[nodiscard]] std::optional<saved_queue> load() const;
    void save(std::span<const listed_entry> list, std::span<const std::uint32_t> round, const queue_state& state);
    void save(std::span<const std::uint32_t> round);
    void save(const queue_state& state);
    void clear();

private:
    [[nodiscard]] std::vector<playable_location> entries() const;

    sqlite::database& database_;
};

}  // namespace ostrevan::library
