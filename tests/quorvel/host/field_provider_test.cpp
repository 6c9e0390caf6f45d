#include "ostrevan/field_provider.h"

#include "quorvel/store/timestamp.h"
#include "tests/support/statistics_test.h"

namespace {

constexpr std::uint64_t second = 10'000'000;
constexpr std::uint64_t day = 86400 * second;
constexpr std::uint64_t moment = 133'541'244'480'000'000;  // 2024-03-05

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

    /// "text" when the field was found, "text?" when not.
    std::string field(const std::string& name, ostrevan::metadb_handle* of) {
        for (std::size_t i = 0; i < provider.get_field_count(); ++i) {
            if (provider.get_field_name(i) != name) continue;
            recording_out out;
            const bool found = provider.process_field(i, of, out);
            EXPECT_EQ(out.writes.size(), 1U) << name;
            return out.writes.at(0) + (found ? "" : "?");
        }
        return "no such field";
    }
};

TEST_F(field_provider, formats_every_field_of_a_record) {
    struct row {
        quorvel::t_playback_stats record;
        const char* field;
        std::string text;
    };
    const std::string time(quorvel::FormatTimestamp(moment).view());
    const std::vector<row> rows = {
        {{}, "first_played", "N/A?"},
        {{}, "last_played", "N/A?"},
        {{}, "added", "N/A?"},
        {{}, "play_count", "0?"},
        {{}, "played_per_day", "??"},
        {{}, "rating", "?"},
        {{}, "rating_stars", "?"},
        {{}, "rating_stars_fixed", "?"},
        {{.first_played = moment}, "first_played", time},
        {{.last_played = moment}, "last_played", time},
        {{.added = moment}, "added", time},
        {{.play_count = 18446744073709551615U}, "play_count", "18446744073709551615"},
        {{.play_count = 1, .first_played = moment, .last_played = moment}, "played_per_day", "??"},
        {{.play_count = 1, .first_played = moment, .last_played = moment + day}, "played_per_day", "??"},
        {{.play_count = 2, .first_played = moment, .last_played = moment + day}, "played_per_day", "1.00"},
        {{.play_count = 4, .first_played = moment, .last_played = moment + 2 * day}, "played_per_day", "1.50"},
        {{.play_count = 2, .first_played = moment, .last_played = moment + 14 * day}, "played_per_day", "0.07"},
        {{.play_count = 2, .first_played = moment, .last_played = moment + 250 * day}, "played_per_day", "0.00"},
        {{.play_count = 10, .first_played = moment, .last_played = moment + 60 * second}, "played_per_day", "10.00"},
        {{.play_count = 9, .first_played = moment + day, .last_played = moment}, "played_per_day", "??"},
        {{.play_count = 9, .first_played = 0, .last_played = moment}, "played_per_day", "??"},
        {{.play_count = 9, .first_played = moment, .last_played = 0}, "played_per_day", "??"},
        {{.rating = 0}, "rating", "0"},
        {{.rating = 0}, "rating_stars", ""},
        {{.rating = 0}, "rating_stars_fixed", "☆☆☆☆☆"},
        {{.rating = 149}, "rating", "3"},
        {{.rating = 149}, "rating_stars", "★★★"},
        {{.rating = 149}, "rating_stars_fixed", "★★★☆☆"},
        {{.rating = 234}, "rating", "5"},
        {{.rating = 234}, "rating_stars", "★★★★★"},
        {{.rating = 234}, "rating_stars_fixed", "★★★★★"},
        {{.rating = 300}, "rating", "5"},
        {{.rating = 0x2AAAAAAB}, "rating_stars_fixed", "★★★★★"},
    };
    for (const auto& [record, name, text] : rows) {
        put(track, record);
        EXPECT_EQ(field(name, track.get()), text) << name;
    }
}

TEST_F(field_provider, takes_a_missing_track_for_one_without_statistics) {
    EXPECT_EQ(field("play_count", nullptr), "0?");
    track->forget_info();
    EXPECT_EQ(field("first_played", track.get()), "N/A?");
}

TEST_F(field_provider, gives_times_to_sort_by) {
    put(track, {.play_count = 7, .last_played = moment + 1});
    const auto values = ostrevan::query_service<ostrevan::field_sort_values>(provider);
    std::vector<std::optional<std::uint64_t>> got;
    for (std::size_t i = 0; i < 4; ++i) got.push_back(values->sort_value(i, *track));
    EXPECT_EQ(got, (std::vector<std::optional<std::uint64_t>>{0, moment + 1, std::nullopt, std::nullopt}));
}

TEST_F(field_provider, keeps_the_positions_that_the_player_knows) {
    const std::vector<std::string> names = {"first_played", "last_played", "play_count",   "played_per_day",
                                            "added",        "rating",      "rating_stars", "rating_stars_fixed"};
    ASSERT_EQ(provider.get_field_count(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(provider.get_field_name(i), names[i]);
    recording_out out;
    EXPECT_DEATH((void)provider.get_field_name(8), "Bug check");
    EXPECT_DEATH(provider.process_field(8, track.get(), out), "Bug check");
}

}  // namespace
