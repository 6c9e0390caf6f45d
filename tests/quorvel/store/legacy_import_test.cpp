#include "quorvel/store/legacy_import.h"

#include <gtest/gtest.h>

#include <concepts>
#include <filesystem>
#include <map>

#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "tests/support/memory_player.h"

using namespace quorvel;

namespace {

const std::string path =
    std::string("/profile") + static_cast<char>(std::filesystem::path::preferred_separator) + "PlaybackStatistics.dat";
constexpr const char* version_1 = "{22A7D447-DA5C-42F5-9E1A-5DD9DE85A812}";
constexpr const char* version_2 = "{F67999FE-CA4D-4384-9BE8-43C1A39F1D3A}";

/// The bytes of a file of early releases.
struct legacy_bytes {
    std::string text;

    template <std::unsigned_integral T>
    legacy_bytes& add(T value) {
        for (std::size_t i = 0; i < sizeof(T); ++i) text += static_cast<char>(value >> 8 * i);
        return *this;
    }
    legacy_bytes(const char* format, std::uint32_t count) {
        const auto id = nuv::parse_guid(format).value();
        add(id.data1).add(id.data2).add(id.data3);
        text.append(id.data4.begin(), id.data4.end());
        add(count);
    }
    legacy_bytes& record(const std::string& location, std::uint64_t count, std::uint64_t first, std::uint64_t last,
                         std::uint32_t subsong = 0) {
        add(static_cast<std::uint32_t>(location.size()));
        text += location;
        return add(subsong).add(count).add(first).add(last);
    }
    legacy_bytes& added_and_rating(std::uint64_t added, std::uint32_t rating) { return add(added).add(rating); }
};

class legacy_import : public testing::Test {
protected:
    support::memory_player player;
    std::map<std::string, std::string>& files = player.local_files.files;

    legacy_import() {
        for (const char* name : {"/a", "/b"})
            player.metadb.tracks[{name, 0}] = support::make_track(name, {{"artist", "x"}, {"title", name}});
        for (const std::uint32_t subsong : {0U, 7U})
            player.decoders.files[{"/sheet", subsong}] =
                support::make_info({{"artist", "x"}, {"title", std::to_string(subsong).c_str()}});
    }
    /// Another start of the player: the message of its import, or an empty text.
    std::string start() {
        player.shut_down();
        player.shutting_down = false;
        player.popups.messages.clear();
        player.index.events.clear();
        player.start();
        return player.popups.messages.empty() ? "" : player.popups.messages.front().text;
    }
    t_playback_stats stored(const char* name) { return PCDB::Get(*player.metadb.tracks[{name, 0}]); }
    t_playback_stats stored_of_sheet(std::uint32_t subsong) {
        const ostrevan::playable_location location{"/sheet", subsong};
        return PCDB::GetByKey(KeyOf(player.decoders.files.at(location), location).value());
    }
};

TEST_F(legacy_import, adds_both_versions_to_what_is_stored_and_removes_the_file) {
    files[path] = legacy_bytes(version_1, 4)
                      .record("/a", 3, 50, 90)
                      .record("/gone", 9, 1, 1)
                      .record("/sheet", 2, 60, 70, 7)
                      .record("/a", 1, 0, 95)
                      .text;
    EXPECT_EQ(start(), "");
    EXPECT_EQ(stored("/a"), (t_playback_stats{.play_count = 4, .first_played = 50, .last_played = 95, .added = 50}));
    EXPECT_EQ(stored_of_sheet(7).play_count, 2U);
    EXPECT_EQ(PCDB::KeysFrom(0, 100).size(), 2U);
    EXPECT_EQ(player.console.lines,
              std::vector<std::string>{"1 of 4 records in PlaybackStatistics.dat are of files that cannot "
                                       "be read; they were left out"});
    EXPECT_EQ(player.index.events,
              (std::vector<std::string>{"back up legacy-import " + path, "commit import of PlaybackStatistics.dat",
                                        "refresh", "save " + nuv::guid_text(statistics_index_guid)}));
    EXPECT_FALSE(files.contains(path));

    player.local_files.sharing_violations = 3;
    files[path] = legacy_bytes(version_2, 2)
                      .record("/a", 2, 40, 60)
                      .added_and_rating(45, 149)
                      .record("/b", 0, 0, 0)
                      .added_and_rating(7, 63)
                      .text;
    EXPECT_EQ(start(), "");
    EXPECT_EQ(stored("/a"),
              (t_playback_stats{.play_count = 6, .first_played = 40, .last_played = 95, .added = 40, .rating = 149}));
    EXPECT_EQ(stored("/b"), (t_playback_stats{.added = 7, .rating = 63}));
    EXPECT_FALSE(files.contains(path)) << "removed as soon as the other program lets it";
}

TEST_F(legacy_import, reads_a_file_of_several_buffers) {
    player.profile = path.substr(0, path.rfind('P'));  // with the separator at its end
    const std::string longer_than_a_buffer = '/' + std::string(70'000, 'x');
    player.metadb.tracks[{longer_than_a_buffer, 0}] = support::make_track("/long", {{"title", "long"}});
    legacy_bytes bytes(version_2, 3000);
    for (std::uint64_t i = 0; i < 3000; ++i)
        bytes.record(i % 300 == 0 ? longer_than_a_buffer : "/a", i, 0, i + 1).added_and_rating(3000 - i, rating_not_set);
    files[path] = bytes.text;
    EXPECT_EQ(start(), "");
    EXPECT_EQ(stored(longer_than_a_buffer.c_str()),
              (t_playback_stats{.play_count = 13500, .last_played = 2701, .added = 300}));
    EXPECT_EQ(stored("/a"), (t_playback_stats{.play_count = 2999 * 1500 - 13500, .last_played = 3000, .added = 1}));
}

TEST_F(legacy_import, leaves_a_file_alone_that_it_cannot_read_to_its_end) {
    const auto whole = legacy_bytes(version_2, 2)
                           .record("/a", 1, 5, 6)
                           .added_and_rating(5, 5)
                           .record("/b", 1, 5, 6)
                           .added_and_rating(5, 5)
                           .text;
    auto foreign = whole;
    foreign[3] ^= 1;
    std::vector<std::pair<std::string, std::string>> cases{
        {foreign, "Unsupported format or corrupted file"},
        {legacy_bytes(version_1, 1).add(0xFFFFFFFFU).text, "Unexpected end of file"}};
    for (std::size_t length = 0; length < whole.size(); ++length)
        cases.emplace_back(whole.substr(0, length), "Unexpected end of file");
    for (const auto& [bytes, reason] : cases) {
        files[path] = bytes;
        EXPECT_EQ(start(), "Could not import legacy playback statistics: " + reason);
        EXPECT_EQ(files[path], bytes);
        EXPECT_TRUE(PCDB::KeysFrom(0, 100).empty()) << bytes.size();
    }
}

TEST_F(legacy_import, adds_nothing_twice_whatever_fails) {
    auto& index = player.index;
    const auto bytes = legacy_bytes(version_1, 2).record("/b", 3, 50, 90).record("/a", 3, 50, 90).text;
    const std::string prefix = "Could not import legacy playback statistics: ";
    struct {
        std::function<void(bool)> set;
        const char* reason;
    } const faults[] = {
        {[&](bool on) { index.fail_backup = on; }, "no room for a copy"},
        {[&](bool on) { index.fail_read = on; }, "index cannot be read"},
        {[&](bool on) { index.fail_registration = on; }, "No active index"},
        {[&](bool on) { index.fail_save = on; }, "disk full"},
        {[&](bool on) { index.writes_until_failure = on ? 1 : index.unlimited; }, "index cannot be written"}};
    for (const bool transactions : {true, false}) {
        index.offer_transactions = transactions;
        index.clear();
        ASSERT_EQ(start(), "");
        PCDB::Update(*KeyOf(*player.metadb.tracks[{"/b", 0}]), [](t_playback_stats& record) { record.play_count = 2; });
        files[path] = bytes;
        for (const auto& [set, reason] : faults) {
            const bool is_half_done = !transactions && &set == &faults[4].set;
            set(true);
            EXPECT_EQ(start(), prefix + reason +
                                   (is_half_done ? ". 1 records have been added already, and will be once more "
                                                   "at the next start"
                                                 : ""));
            set(false);
            EXPECT_EQ(files[path], bytes);
            EXPECT_EQ(index.keys(statistics_index_guid).size(), 1U) << reason;
            EXPECT_TRUE(is_half_done || index.registered.empty() || stored("/b") == (t_playback_stats{.play_count = 2}))
                << reason;
        }
        EXPECT_EQ(start(), "");
        EXPECT_EQ(stored("/a").play_count, 3U);
        EXPECT_EQ(stored("/b").play_count, transactions ? 5U : 8U);
    }
    files[path] = bytes;
    player.local_files.refuses_removal = true;
    EXPECT_EQ(start(), prefix + "cannot be removed");
    EXPECT_EQ(stored("/a").play_count, 6U) << "saved before the file is to go";
}

TEST_F(legacy_import, is_silent_without_a_file_or_in_quiet_mode) {
    EXPECT_EQ(start(), "");
    files[path] = legacy_bytes(version_1, 0).text;
    player.quiet = true;
    EXPECT_EQ(start(), "");
    EXPECT_TRUE(files.contains(path));
    player.quiet = false;
    EXPECT_EQ(start(), "");
    EXPECT_FALSE(files.contains(path)) << "a file without records is done with";
    EXPECT_EQ(player.index.events.size(), 1U) << "saved, but not backed up";
}

}  // namespace
