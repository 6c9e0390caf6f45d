#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <random>
#include <vector>

#include "ostrevan/track.h"
#include "quorvel/store/record.h"

namespace bench {

class bench_player;

constexpr std::size_t million = 1'000'000;

/// Handles of the player with the tags of a usual library: albums of twelve, some with characters beyond ASCII. Other tracks
/// for every `series`.
std::vector<ostrevan::metadb_handle_ptr> make_tracks(std::size_t count, unsigned series);

/// 0 to `count` - 1, shuffled.
std::vector<std::size_t> random_order(std::size_t count, unsigned seed);

/// A time of some second in the twenty years before 2025, 100 ns since 1601.
std::uint64_t random_time(std::uint64_t random) noexcept;

/// A track that has been played, with every field set.
quorvel::t_playback_stats random_record(std::mt19937_64& random);

/// A million of them that no index has a record of, made once.
const ostrevan::metadb_handle_list& new_tracks();

/// The player's word to the component that those have come into the library. [main-thread]
void add_to_library(bench_player& player);

/// The profile of a player whose index holds a million records, those of a library of a tenth of that among them.
struct million_records {
    std::filesystem::path profile;
    std::vector<ostrevan::metadb_handle_ptr> tracks;
    std::vector<std::uint64_t> keys;  ///< of all records, those of the tracks first
};
/// Made once. No player may live meanwhile.
const million_records& records_of_a_million();

/// The same in memory and nothing else: what a read cannot be faster than.
class record_array {
public:
    record_array() : slots_(million) {}
    void read(std::size_t number, void* out) const noexcept;

private:
    struct slot {
        std::uint64_t words[6];
    };
    std::vector<slot> slots_;
};

}  // namespace bench
