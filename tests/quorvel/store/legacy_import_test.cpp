#include <gtest/gtest.h>

#include <concepts>
#include <filesystem>
#include <map>

#include "quorvel/store/key.h"
#include "quorvel/store/legacy_import.h"
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
    legacy_bytes& record(const std::string& location, std::uint64_t count, std::uint64_t first, std::uint64_t last) {
        add(static_cast<std::uint32_t>(location.size()));
        text += location;
        return add(std::uint32_t{0}).add(count).add(first).add(last);
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
        player.decoders.files[{"/only in its file", 0}] = support::make_info({{"artist", "x"}, {"title", "in its file"}});
    }
    t_playback_stats stored(const char* name) { return PCDB::Get(*player.metadb.tracks[{name, 0}]); }
    std::string message() const { return player.popups.messages.empty() ? "" : player.popups.messages.front().text; }
};

}  // namespace

TEST_F(legacy_import, adds_both_versions_to_what_is_stored_and_removes_the_file) {
    files[path] = legacy_bytes(version_1, 4)
                      .record("/a", 3, 50, 90)
                      .record("/gone", 9, 1, 1)
                      .record("/only in its file", 2, 60, 70)
                      .record("/a", 1, 0, 95)
                      .text;
    player.start();
    EXPECT_EQ(stored("/a"), (t_playback_stats{.play_count = 4, .first_played = 50, .last_played = 95, .added = 50}));
    const auto key_in_file = KeyOf(player.decoders.files.begin()->second, {"/only in its file", 0}).value();
    EXPECT_EQ(PCDB::GetByKey(key_in_file).play_count, 2U);
    EXPECT_EQ(PCDB::Keys().size(), 2U);
    EXPECT_EQ(player.console.lines,
              std::vector<std::string>{"1 of 4 records in PlaybackStatistics.dat are of files that cannot "
                                       "be read; they were left out"});
    EXPECT_EQ(player.index.saves, std::vector{statistics_index_guid});
    EXPECT_FALSE(files.contains(path));
    EXPECT_EQ(player.index.refreshes.size(), 1U);
    player.shut_down();

    player.shutting_down = false;
    player.local_files.sharing_violations = 3;
    files[path] = legacy_bytes(version_2, 2)
                      .record("/a", 2, 40, 60)
                      .added_and_rating(45, 149)
                      .record("/b", 0, 0, 0)
                      .added_and_rating(7, 63)
                      .text;
    player.start();
    EXPECT_EQ(stored("/a"),
              (t_playback_stats{.play_count = 6, .first_played = 40, .last_played = 95, .added = 40, .rating = 149}));
    EXPECT_EQ(stored("/b"), (t_playback_stats{.added = 7, .rating = 63}));
    EXPECT_FALSE(files.contains(path)) << "removed as soon as the other program lets it";
    EXPECT_EQ(message(), "");
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
        player.start();
        EXPECT_EQ(message(), "Could not import legacy playback statistics: " + reason);
        EXPECT_EQ(files[path], bytes);
        EXPECT_TRUE(PCDB::Keys().empty()) << bytes.size();
        player.popups.messages.clear();
        player.shut_down();
        player.shutting_down = false;
    }
}

TEST_F(legacy_import, keeps_the_file_until_its_records_are_safe) {
    const auto bytes = legacy_bytes(version_1, 1).record("/a", 3, 50, 90).text;
    files[path] = bytes;
    const auto start_with = [&](auto fault) {
        fault();
        player.start();
        player.shut_down();
        player.shutting_down = false;
        EXPECT_TRUE(message().starts_with("Could not import legacy playback statistics: ")) << message();
        EXPECT_EQ(files[path], bytes);
        player.popups.messages.clear();
    };
    start_with([&] { player.index.writes_until_failure = 0; });
    EXPECT_TRUE(PCDB::Keys().empty());
    player.index.writes_until_failure = static_cast<std::size_t>(-1);
    start_with([&] { player.index.fail_registration = true; });
    player.index.fail_registration = false;
    start_with([&] { player.index.fail_save = true; });
    player.index.fail_save = false;
    start_with([&] { player.local_files.refuses_removal = true; });
    player.local_files.refuses_removal = false;
    player.start();
    EXPECT_EQ(stored("/a").play_count, 6U) << "once when the file could not be removed, once now, and never unsaved";
}

TEST_F(legacy_import, is_silent_without_a_file_or_in_quiet_mode) {
    player.start();
    player.shut_down();
    files[path] = legacy_bytes(version_1, 0).text;
    player.shutting_down = false;
    player.quiet = true;
    player.start();
    EXPECT_TRUE(files.contains(path));
    player.shut_down();
    player.shutting_down = false;
    player.quiet = false;
    player.start();
    EXPECT_FALSE(files.contains(path)) << "a file without records is done with";
    EXPECT_TRUE(player.popups.messages.empty());
}
