#include "bench/tracks.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <string_view>

#include "bench/bench_player.h"
#include "ostrevan/library.h"
#include "player/library/track.h"
#include "quorvel/store/key.h"
#include "quorvel/store/record.h"

namespace bench {
namespace {

constexpr std::size_t tracks_of_album = 12;
constexpr std::size_t albums_of_artist = 4;

constexpr std::array<std::string_view, 8> artists{"The Paper Lanterns", "Ines Valdåker", "Quiet Harbour", "Old Orchard Band",
                                                  "Marta Grün",         "Nightjar",      "The Low Tides", "Eleven Bridges"};
constexpr std::array<std::string_view, 6> albums{"Harbour Lights",         "Café Étoile",   "Songs from the North Road",
                                                 "Live in the Small Hall", "Second Winter", "A Letter Home"};
constexpr std::array<std::string_view, 7> titles{"First Ferry",     "Gulls over the Roof", "The Other Umbrella",
                                                 "Trois cuillères", "Last Tram",           "Low Water at Evening",
                                                 "Home before Rain"};
constexpr std::array<std::string_view, 3> genres{"Ambient", "Jazz", "Folk"};

template <std::size_t Count>
std::string numbered(const std::array<std::string_view, Count>& names, std::size_t number) {
    return std::string(names[number % Count]) + " " + std::to_string(number);
}

ostrevan::file_info info_of(std::size_t number, unsigned series) {
    const std::size_t album = number / tracks_of_album;
    const std::string artist = numbered(artists, album / albums_of_artist) + " " + std::to_string(series);
    ostrevan::file_info_builder info;
    info.meta_add("artist", artist);
    info.meta_add("album artist", artist);
    info.meta_add("album", numbered(albums, album));
    info.meta_add("date", std::to_string(1970 + album % 55));
    info.meta_add("genre", genres[album % genres.size()]);
    info.meta_add("tracknumber", std::to_string(number % tracks_of_album + 1));
    info.meta_add("discnumber", "1");
    info.meta_add("title", numbered(titles, number));
    info.length = 150 + static_cast<double>(number % 200);
    return info.build();
}

million_records make_records() {
    million_records made;
    made.profile = new_folder();
    made.tracks = make_tracks(million / 10, 0);
    made.keys.reserve(million);
    bench_player player(made.profile);
    for (const auto& track : made.tracks) made.keys.push_back(*quorvel::KeyOf(*track));
    std::mt19937_64 random(11);
    while (made.keys.size() < million) made.keys.push_back(random());

    auto transaction = player.records.begin();
    for (const std::uint64_t key : made.keys)
        transaction.write(quorvel::statistics_index_guid, key, quorvel::encode_record(random_record(random)));
    transaction.commit();
    return made;
}

}  // namespace

std::vector<ostrevan::metadb_handle_ptr> make_tracks(std::size_t count, unsigned series) {
    std::vector<ostrevan::metadb_handle_ptr> tracks;
    tracks.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string path = "/music/" + std::to_string(i / tracks_of_album) + "/" + std::to_string(i) + ".flac";
        auto track = ostrevan::service_new<ostrevan::library::track>(ostrevan::playable_location{path, 0});
        track->publish(ostrevan::library::make_snapshot(info_of(i, series)));
        tracks.emplace_back(std::move(track));
    }
    return tracks;
}

std::vector<std::size_t> random_order(std::size_t count, unsigned seed) {
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::shuffle(order, std::mt19937_64(seed));
    return order;
}

std::uint64_t random_time(std::uint64_t random) noexcept {
    constexpr std::uint64_t from_2005 = 12'749'011'200;  // seconds since 1601
    constexpr std::uint64_t twenty_years = 631'152'000;
    return (from_2005 + random % twenty_years) * 10'000'000;
}

quorvel::t_playback_stats random_record(std::mt19937_64& random) {
    const std::uint64_t added = random_time(random());
    constexpr std::uint64_t hour = 36'000'000'000;
    return {.play_count = random() % 100 + 1,
            .first_played = added + random() % 100 * hour,
            .last_played = added + random() % 10'000 * hour,
            .added = added,
            .rating = quorvel::rating_of_stars(static_cast<std::uint32_t>(random() % 6))};
}

const ostrevan::metadb_handle_list& new_tracks() {
    static const ostrevan::metadb_handle_list made(make_tracks(million, 3));
    return made;
}

void add_to_library(bench_player& player) {
    player.services.for_each<ostrevan::library_callback>(
        [](ostrevan::library_callback& callback) { callback.on_items_added(new_tracks()); });
}

const million_records& records_of_a_million() {
    static const million_records made = make_records();
    return made;
}

void record_array::read(std::size_t number, void* out) const noexcept { std::memcpy(out, &slots_[number], sizeof(slot)); }

}  // namespace bench
