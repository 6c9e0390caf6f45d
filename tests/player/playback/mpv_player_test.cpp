#include "player/playback/mpv_player.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ostrevan::playback {
namespace {

namespace fs = std::filesystem;

/// A folder of short real files, made once by ffmpeg and removed at the end.
class mpv_player_test : public testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = fs::temp_directory_path() / ("playback_test_" + std::to_string(getpid()));
        fs::create_directories(folder_);
        std::string command = "ffmpeg -v error -f lavfi -i sine=frequency=330:duration=2 -ac 1";
        for (const char* name : {"a.wav", "a.flac", "a.ogg", "a.mp3", "a.opus", "a.m4a"}) command += " '" + path(name) + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        command = "ffmpeg -v error -f lavfi -i sine=frequency=220:duration=100 -ac 1 -ar 8000 '" + path("long.flac") + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        std::ofstream(path("noise.mp3")) << "this is no music\n";
        std::ofstream(path("empty.flac")).flush();
        std::ofstream(path("list.mp3")) << "#EXTM3U\n" << path("a.wav") << '\n' << path("a.flac") << '\n';
        ASSERT_EQ(mkfifo(path("pipe.mp3").c_str(), 0600), 0);
    }
    static void TearDownTestSuite() { fs::remove_all(folder_); }
    static std::string path(const char* name) { return (folder_ / name).string(); }

    play_callbacks recording() {
        return {.on_started = [this](std::size_t i) { log_.push_back("started " + std::to_string(i)); },
                .on_counted = [this](std::size_t i) { log_.push_back("counted " + std::to_string(i)); },
                .on_finished = [this](std::size_t i) { log_.push_back("finished " + std::to_string(i)); },
                .on_error =
                    [this](std::size_t i, const std::string& text) {
                        log_.push_back("error " + std::to_string(i));
                        EXPECT_FALSE(text.empty());
                    },
                .on_progress = {},
                .on_turn = {}};
    }
    bool play(const std::vector<play_item>& items, const play_callbacks& callbacks) {
        return mpv_player({.audio = audio_output::null, .fast = true}, callbacks).run(items, stop_);
    }

    inline static fs::path folder_;
    std::vector<std::string> log_;
    std::atomic<bool> stop_ = false;
};

using lines = std::vector<std::string>;

TEST_F(mpv_player_test, counts_a_file_of_each_format_once_in_the_order_of_the_list) {
    lines expected;
    std::vector<play_item> items;
    for (const char* name : {"a.wav", "a.flac", "a.ogg", "a.mp3", "a.opus", "a.m4a", "a.wav"}) {
        for (const char* word : {"started ", "counted ", "finished "})
            expected.push_back(word + std::to_string(items.size()));
        items.push_back({path(name), {}, {}});
    }
    EXPECT_TRUE(play(items, recording()));
    EXPECT_EQ(log_, expected);
}

TEST_F(mpv_player_test, goes_on_after_what_cannot_be_played) {
    std::vector<play_item> items{{path("a.flac"), {}, {}}};
    for (const char* name : {"missing.flac", "noise.mp3", "empty.flac", "list.mp3", "pipe.mp3", "."})
        items.push_back({path(name), {}, {}});
    items.push_back({path("a.mp3"), {}, {}});
    items.push_back({path("a.wav"), 5.0, {}});
    EXPECT_TRUE(play(items, recording()));
    EXPECT_EQ(log_, (lines{"started 0", "counted 0", "finished 0", "error 1", "error 2", "error 3", "error 4", "error 5",
                           "error 6", "started 7", "counted 7", "finished 7", "error 8"}));
}

TEST_F(mpv_player_test, measures_the_parts_of_a_cue_sheet_by_their_own_length) {
    std::vector<double> durations;
    auto callbacks = recording();
    callbacks.on_progress = [&](std::size_t index, double position, double duration) {
        durations.resize(index + 1);
        durations[index] = duration;
        EXPECT_GE(position, 0);
        EXPECT_LT(position, duration + 1);
    };
    EXPECT_TRUE(
        play({{path("long.flac"), 0.0, 40.0}, {path("long.flac"), 40.0, 75.5}, {path("long.flac"), 75.5, {}}}, callbacks));
    EXPECT_EQ(log_, (lines{"started 0", "counted 0", "finished 0", "started 1", "counted 1", "finished 1", "started 2",
                           "counted 2", "finished 2"}));
    ASSERT_EQ(durations.size(), 3U);
    EXPECT_NEAR(durations[0], 40, 0.01);
    EXPECT_NEAR(durations[1], 35.5, 0.01);
    EXPECT_NEAR(durations[2], 24.5, 0.1);
}

TEST_F(mpv_player_test, does_not_count_what_a_seek_skipped) {
    // In real time, so that the seek surely comes before the end; what is left after it is half a second.
    const std::vector<play_item> items{{path("long.flac"), {}, {}}};
    auto callbacks = recording();
    bool sought = false;
    mpv_player* playing = nullptr;
    callbacks.on_progress = [&](auto...) {
        if (!std::exchange(sought, true)) playing->seek(99.5);
    };
    mpv_player player({.audio = audio_output::null, .fast = false}, callbacks);
    playing = &player;
    EXPECT_TRUE(player.run(items, stop_));
    EXPECT_TRUE(sought);
    EXPECT_EQ(log_, (lines{"started 0", "finished 0"}));
}

TEST_F(mpv_player_test, stops_when_told_to_and_leaves_the_rest_alone) {
    auto callbacks = recording();
    callbacks.on_progress = [this](auto...) { stop_ = true; };
    mpv_player player({.audio = audio_output::null, .fast = false}, callbacks);
    EXPECT_FALSE(player.run(std::vector<play_item>{{path("long.flac"), {}, {}}, {path("a.wav"), {}, {}}}, stop_));
    EXPECT_EQ(log_, (lines{"started 0", "finished 0"}));
}

TEST_F(mpv_player_test, passes_on_what_a_callback_throws_and_can_play_again) {
    bool thrown = false;
    auto callbacks = recording();
    callbacks.on_counted = [&](std::size_t) {
        if (!std::exchange(thrown, true)) throw std::runtime_error("the database is full");
    };
    mpv_player player({.audio = audio_output::null, .fast = true}, callbacks);
    const std::vector<play_item> items{{path("a.wav"), {}, {}}};
    EXPECT_THROW(player.run(items, stop_), std::runtime_error);
    EXPECT_TRUE(player.run(items, stop_));
    EXPECT_EQ(log_, (lines{"started 0", "started 0", "finished 0"}));
}

}  // namespace
}  // namespace ostrevan::playback
