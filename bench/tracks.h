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

/// Track handles with the tags of a typical library: albums of twelve, some with non-ASCII characters. Each `series` has
/// different tracks.
std::vector<ostrevan::metadb_handle_ptr> make_tracks(std::size_t count, unsigned series);

/// 0 to `count` - 1, shuffled.
std::vector<std::size_t> random_order(std::size_t count, unsigned seed);

/// A time in the twenty years before 2025, in 100 ns since 1601.
std::uint64_t random_time(std::uint64_t random) noexcept;

/// A record with every field set.
quorvel::t_playback_stats random_record(std::mt19937_64& random);

/// A million tracks without a record in any index, made once.
const ostrevan::metadb_handle_list& new_tracks();

/// Tells the component that they have been added to the library. [main-thread]
void add_to_library(bench_player& player);

/// A profile with a million records in the index, including those of a library of 100,000 tracks.
struct million_records {
    std::filesystem::path profile;
    std::vector<ostrevan::metadb_handle_ptr> tracks;
    std::vector<std::uint64_t> keys;  ///< of all records, those of the tracks first
};
/// Made once. No player may exist meanwhile.
const million_records& records_of_a_million();

/// The same records in a plain array: the floor for reads.
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
