#include "ostrevan/field_provider.h"

#include "tests/support/statistics_test.h"

using support::day;
using support::moment;
using support::second;

namespace {

struct recording_out final : ostrevan::titleformat_text_out {
    std::vector<std::string> writes;
    void write(const nuv::guid& kind, const char* text, std::size_t length) override {
        EXPECT_EQ(nuv::guid_text(kind), "673AA1CD-A7A8-40C8-BF9B-34379929163B");
        writes.push_back(length == whole_text ? std::string(text) : std::string(text, length));
    }
};

class field_provider : public support::statistics_test {
protected:
    ostrevan::field_provider& provider = player.component_service<ostrevan::field_provider>();
    support::memory_track_ptr track = support::make_track("/a", {{"artist", "a"}, {"title", "t"}});

    /// The fields from one to another, each as "text" when it was found and "text?" when not, with "|" between them.
    std::string fields(ostrevan::metadb_handle* of, std::size_t first = 0, std::size_t last = 7) {
        std::string all;
        for (std::size_t i = first; i <= last; ++i) {
            recording_out out;
            const bool found = provider.process_field(i, of, out);
            EXPECT_EQ(out.writes.size(), 1U) << i;
            all += (i == first ? "" : "|") + out.writes.at(0) + (found ? "" : "?");
        }
        return all;
    }
};

TEST_F(field_provider, formats_every_field_of_a_record) {
    const std::pair<quorvel::t_playback_stats, const char*> rows[] = {
        {{}, "N/A?|N/A?|0?|??|N/A?|?|?|?"},
        {{.play_count = 4, .first_played = moment, .last_played = moment + 2 * day, .added = moment - day, .rating = 149},
         "2024-03-05 20:30:48|2024-03-07 20:30:48|4|1.50|2024-03-04 20:30:48|3|★★★|★★★☆☆"},
        {{.play_count = ~0ULL, .rating = 0}, "N/A?|N/A?|18446744073709551615|??|N/A?|0||☆☆☆☆☆"},
        {{.first_played = moment, .rating = 234}, "2024-03-05 20:30:48|N/A?|0?|??|N/A?|5|★★★★★|★★★★★"},
        {{.last_played = moment, .rating = 300}, "N/A?|2024-03-05 20:30:48|0?|??|N/A?|5|★★★★★|★★★★★"},
        {{.added = moment, .rating = 0x2AAAAAAB}, "N/A?|N/A?|0?|??|2024-03-05 20:30:48|5|★★★★★|★★★★★"},
    };
    for (const auto& [record, texts] : rows) {
        put(track, record);
        EXPECT_EQ(fields(track.get()), texts);
    }
}

TEST_F(field_provider, rounds_and_caps_the_plays_of_a_day) {
    const struct {
        std::uint64_t count, first, last;
        const char* text;
    } rows[] = {
        {1, moment, moment, "??"},
        {1, moment, moment + day, "??"},
        {2, moment, moment + day, "1.00"},
        {2, moment, moment + 14 * day, "0.07"},
        {2, moment, moment + 8 * day, "0.13"},
        {2, moment, moment + 250 * day, "0.00"},
        {5, moment, moment, "??"},
        {10, moment, moment + 60 * second, "10.00"},
        {9, moment + day, moment, "??"},
        {9, 0, moment, "??"},
        {9, moment, 0, "??"},
        {3, moment, moment + 1, "??"},
    };
    for (const auto& [count, first, last, text] : rows) {
        put(track, {.play_count = count, .first_played = first, .last_played = last});
        EXPECT_EQ(fields(track.get(), 3, 3), text) << count << ' ' << first << ' ' << last;
    }
}

TEST_F(field_provider, takes_a_missing_track_for_one_without_statistics) {
    EXPECT_EQ(fields(nullptr, 2, 2), "0?");
    track->forget_info();
    EXPECT_EQ(fields(track.get(), 0, 0), "N/A?");
}

TEST_F(field_provider, gives_times_to_sort_by) {
    put(track, {.play_count = 7, .last_played = moment + 1});
    const auto values = ostrevan::query_service<ostrevan::field_sort_values>(provider);
    std::vector<std::optional<std::uint64_t>> got;
    for (std::size_t i = 0; i < 4; ++i) got.push_back(values->sort_value(i, *track));
    EXPECT_EQ(got, (std::vector<std::optional<std::uint64_t>>{0, moment + 1, std::nullopt, std::nullopt}));
}

}  // namespace
