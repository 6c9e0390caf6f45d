#include "quorvel/interchange/import_handlers.h"

#include "quorvel/store/index_writer.h"
#include "tests/quorvel/interchange/import_file.h"

namespace {

using quorvel::t_playback_stats;

const std::string all_attributes =
    R"(Count="2" FirstPlayed="30" FirstPlayedFriendly="x" LastPlayed="40" Added="" Rating="63" RatingFriendly="y" )";
constexpr t_playback_stats before{.play_count = 10, .first_played = 3, .last_played = 4, .added = 5, .rating = 234};

class import_handlers : public support::import_file {
protected:
    ostrevan::metadb_handle_list tracks = support::make_tracks(3);

    std::string entry_of(std::size_t track, const std::string& attributes) {
        return entry(key_of(tracks[track]), attributes);
    }
};

TEST_F(import_handlers, replaces_the_fields_that_are_wanted_and_present) {
    const struct {
        std::initializer_list<int> unchecked;
        std::string attributes;
        t_playback_stats after;
    } cases[] = {
        {{}, all_attributes, {.play_count = 2, .first_played = 30, .last_played = 40, .added = 0, .rating = 63}},
        {{1005, 1006, 1007, 1008},
         all_attributes,
         {.play_count = 10, .first_played = 3, .last_played = 4, .added = 5, .rating = 63}},
        {{1009}, all_attributes, {.play_count = 2, .first_played = 30, .last_played = 40, .added = 0, .rating = 234}},
        {{}, R"(LastPlayed="9")", {.play_count = 10, .first_played = 3, .last_played = 9, .added = 5, .rating = 234}},
        {{1006}, R"(FirstPlayed="no number" Note="")", before},
    };
    for (const auto& [unchecked, attributes, after] : cases) {
        put(tracks[0], before);
        EXPECT_EQ(import(under_active(entry_of(0, attributes)), unchecked), messages{});
        EXPECT_EQ(stored(tracks[0]), after) << attributes;
    }
}

TEST_F(import_handlers, makes_one_operation_of_a_file_and_nothing_of_its_repetition) {
    const auto file =
        under_active(entry_of(0, R"(Count="1")") + "<Entry Count=\"5\"/><entry ID=\"7\" Count=\"5\"/>" +
                     entry_of(1, R"(Count="7")") + entry_of(2, "") + entry(0, R"(Count="5")") + entry_of(0, R"(Added="2")"));
    const auto committed = player.index.committed;
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(import(file), messages{});
        EXPECT_EQ(player.index.committed - committed, 1U);
        EXPECT_EQ(player.index.refreshes, (std::vector<std::vector<std::uint64_t>>{{key_of(tracks[0]), key_of(tracks[1])}}));
        EXPECT_EQ(player.index.keys(quorvel::statistics_index_guid).size(), 2U);
        EXPECT_EQ(stored(tracks[0]), (t_playback_stats{.play_count = 1, .added = 2}));
    }
    EXPECT_EQ(player.progress.started.back(), "records imported");
    EXPECT_EQ(import(under_active(entry_of(0, R"(Count="4")") + entry_of(0, R"(Count="3")"))), messages{});
    EXPECT_EQ(stored(tracks[0]).play_count, 3U) << "the last entry of a key wins";
}

TEST_F(import_handlers, keeps_what_came_before_an_error) {
    const std::string good = entry_of(0, R"(Count="4" Rating="1")");
    const std::string later = entry_of(1, R"(Count="4")");
    const std::pair<std::string, const char*> cases[] = {
        {under_active(good + entry_of(1, R"(Count="18446744073709551616")") + later), "Overflow"},
        {under_active(good + entry_of(1, R"(Count="4" Rating="4294967296")") + later), "Overflow"},
        {under_active(good + R"(<Entry ID="0x1" Count="1"/>)" + later), "Invalid parameters"},
        {under_active(good + R"(<Entry ID='1'/>)" + later), "XML error"},
        {under_active(good + "<Entry>" + later), "XML error"},
        {under_active(good + later).substr(0, under_active(good).size()), "XML error"},
        {under_active(good) + "<PlaybackStatistics/>", "Unsupported format or corrupted file"},
        {under_active(good) + R"(<PlaybackStatistics Version="3.1"/>)", "Unsupported format or corrupted file"},
        {under_active(good) + R"(<PlaybackStatistics Version="3.0"/>)", "Unsupported format or corrupted file"},
        {under_active(good) + under({1, 2, 3, {}}, later), "Unsupported format or corrupted file"},
    };
    for (const auto& [file, message] : cases) {
        put(tracks[0], before);
        EXPECT_EQ(import(file), messages{message}) << file;
        EXPECT_EQ(player.console.lines.back(), "Playback statistics import: records read: 1, statistics changed: 1");
        EXPECT_EQ(stored(tracks[0]).play_count, 4U) << file;
        EXPECT_EQ(stored(tracks[1]), t_playback_stats{}) << file;
    }
}

TEST_F(import_handlers, passes_over_other_documents) {
    for (const char* text : {"", "a picture", R"(<Library Version="9"><Entry ID="1" Count="1"/></Library>)"}) {
        EXPECT_EQ(import(text), messages{});
        EXPECT_EQ(player.console.lines.back(), "Playback statistics import: records read: 0, statistics changed: 0");
    }
    EXPECT_EQ(import("<other/>" + under_active(entry(9, R"(Count="1")"))), messages{});
    EXPECT_EQ(quorvel::PCDB::GetByKey(9).play_count, 1U);
}

TEST_F(import_handlers, needs_an_index_for_paths_only) {
    quorvel::statistics_index::close();
    EXPECT_EQ(import(R"(<PlaybackStatistics Version="4.0"/>)"), messages{"No active index"});
    EXPECT_EQ(import(under_active(entry_of(0, all_attributes))), messages{});
}

TEST_F(import_handlers, says_what_an_interrupted_or_failed_import_has_changed) {
    std::string entries;
    for (std::uint64_t key = 1; key <= 300; ++key) entries += entry(key, R"(Count="1")");
    const auto records = [&] { return player.index.keys(quorvel::statistics_index_guid).size(); };
    player.progress.abort = true;
    EXPECT_EQ(import(under_active(entries)), messages{"Interrupted. No statistics have been changed"});
    EXPECT_EQ(records() + player.index.refreshes.size(), 0U);
    player.index.offer_transactions = false;
    EXPECT_EQ(import(under_active(entries)), messages{"Interrupted after 255 records were changed"});
    EXPECT_EQ(records(), 255U);
    EXPECT_EQ(player.index.refreshes.at(0).size(), 255U);
    EXPECT_EQ(import(under_active(entries)), messages{"Interrupted. No statistics have been changed"});
    player.index.offer_transactions = true;
    player.progress.abort = false;
    player.index.writes_until_failure = 44;
    EXPECT_EQ(import(under_active(entries)), messages{"index cannot be written"});
    EXPECT_EQ(records(), 299U);
}

}  // namespace
