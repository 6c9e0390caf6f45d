#include "ostrevan/track_properties.h"

#include <algorithm>

#include "tests/support/statistics_test.h"

using support::day;
using support::moment;

namespace {

using ostrevan::metadb_handle_list;

struct recording_sink final : ostrevan::track_property_sink, ostrevan::track_property_groups {
    bool accept = true;
    std::string rows, groups;

    void set_property(const char* group, double priority, const char* name, const char* value) override {
        EXPECT_STREQ(group, "Playback Statistics");
        rows += std::to_string(static_cast<int>(priority)) + ' ' + name + " = " + value + '\n';
    }
    bool on_group(const char* group) override {
        groups += group;
        return accept;
    }
};

class track_properties : public support::statistics_test {
protected:
    std::string rows(const metadb_handle_list& tracks, bool wanted = true) {
        recording_sink sink;
        sink.accept = wanted;
        player.component_service<ostrevan::track_property_provider>().enumerate_groups(tracks, sink, sink);
        EXPECT_EQ(sink.groups, "Playback Statistics");
        return sink.rows;
    }
};

TEST_F(track_properties, sum_up_a_selection) {
    const auto tracks = support::make_tracks(3);
    put(tracks[0],
        {.play_count = 2, .first_played = moment + day, .last_played = moment + 9 * day, .added = moment - 9 * day});
    put(tracks[1],
        {.play_count = 3, .first_played = moment, .last_played = moment + 5 * day, .added = moment - day, .rating = 149});
    EXPECT_EQ(rows(tracks),
              "0 Played = 5 times\n2 Last played = 2024-03-14 20:30:48\n1 First played = 2024-03-05 20:30:48\n"
              "3 Added = 2024-02-25 20:30:48 - 2024-03-04 20:30:48\n4 Rating = ★★★☆☆\n");
}

TEST_F(track_properties, show_only_rows_with_something_to_say) {
    const auto tracks = support::make_tracks(2);
    EXPECT_EQ(rows({}), "");
    EXPECT_EQ(rows(tracks), "");
    put(tracks[0], {.play_count = 1, .added = moment, .rating = 0});
    put(tracks[1], {.added = moment});
    EXPECT_EQ(rows(tracks, false), "") << "a group that is not wanted";
    // Copies share a record, which counts once, and a track without information has none.
    const auto copy = support::make_track("/b", {{"artist", "a"}, {"title", "t0"}}), unread = support::make_track("/c", {});
    unread->forget_info();
    EXPECT_EQ(rows({tracks[0], unread, tracks[0], copy, tracks[1]}),
              "0 Played = 1 time\n3 Added = 2024-03-05 20:30:48\n4 Rating = ☆☆☆☆☆\n");
}

TEST_F(track_properties, average_ratings_in_the_order_of_the_keys) {
    auto tracks = support::make_tracks(3);
    std::ranges::sort(tracks.items(), {}, [](const auto& track) { return key_of(track); });
    const auto combined = [&](std::array<std::uint32_t, 3> ratings) {
        for (std::size_t i = 0; i < 3; ++i) put(tracks[i], {.rating = ratings[i]});
        return rows({tracks[2], tracks[0], tracks[1]});
    };
    EXPECT_EQ(combined({63, 149, 234}), "4 Rating = ★★★☆☆\n");  // 106, then 170
    EXPECT_EQ(combined({234, 149, 63}), "4 Rating = ★★☆☆☆\n");  // 191, then 127
    EXPECT_EQ(combined({quorvel::rating_not_set, 234, quorvel::rating_not_set}), "4 Rating = ★★★★★\n");
}

}  // namespace
