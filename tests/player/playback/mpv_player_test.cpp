#include "player/playback/mpv_player.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// The audio outputs tried by mpv leak some bytes of their own.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() { return "leak:libSDL2\n"; }

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
        ASSERT_EQ(mkfifo(path("pipe.mp3").c_str(), 0600), 0);
    }
    static void TearDownTestSuite() { fs::remove_all(folder_); }
    static std::string path(const char* name) { return (folder_ / name).string(); }

    play_callbacks recording() {
        return {.on_started = [this](std::size_t i) { log_.push_back("started " + std::to_string(i)); },
                .on_counted = [this](std::size_t i, double) { log_.push_back("counted " + std::to_string(i)); },
                .on_skipped = {},
                .on_finished = [this](std::size_t i) { log_.push_back("finished " + std::to_string(i)); },
                .on_error =
                    [this](std::size_t i, const std::string& text) {
                        log_.push_back("error " + std::to_string(i));
                        EXPECT_FALSE(text.empty());
                    },
                .on_progress = {},
                .on_status = {},
                .on_hearing = [this](bool heard) { log_.push_back(heard ? "heard" : "not heard"); },
                .on_turn = {}};
    }
    bool play(const std::vector<play_item>& items, const play_callbacks& callbacks) {
        return mpv_player({.audio = audio_output::null, .fast = true}, callbacks).run(items, queue(items.size()), stop_);
    }

    inline static fs::path folder_;
    std::vector<std::string> log_;
    std::atomic<bool> stop_ = false;
};

using lines = std::vector<std::string>;

TEST_F(mpv_player_test, counts_each_format_once_in_the_order_of_the_list_and_goes_on_after_what_cannot_be_played) {
    lines expected;
    std::vector<play_item> items;
    const auto add = [&](std::initializer_list<const char*> names, std::initializer_list<const char*> words) {
        for (const char* name : names) {
            for (const char* word : words) expected.push_back(word + std::to_string(items.size()));
            items.push_back({path(name), {}, {}});
        }
    };
    const auto played = {"started ", "counted ", "finished "};
    add({"a.wav", "a.flac", "a.ogg", "a.mp3", "a.opus", "a.m4a", "a.wav"}, played);
    add({"missing.flac", "noise.mp3", "empty.flac", "http://127.0.0.1/a.mp3", "pipe.mp3", "."}, {"error "});
    add({"a.mp3"}, played);
    add({"a.wav"}, {"error "});
    items.back().start = 5.0;
    EXPECT_TRUE(play(items, recording()));
    EXPECT_EQ(log_, expected);
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
    // In real time, so that the seek comes before the end and half a second remains.
    const std::vector<play_item> items{{path("long.flac"), {}, {}}};
    auto callbacks = recording();
    bool sought = false;
    mpv_player* playing = nullptr;
    callbacks.on_progress = [&](auto...) {
        if (!std::exchange(sought, true)) playing->perform({action::seek_to, 99.5});
    };
    mpv_player player({.audio = audio_output::null, .fast = false}, callbacks);
    playing = &player;
    EXPECT_TRUE(player.run(items, queue(items.size()), stop_));
    EXPECT_TRUE(sought);
    EXPECT_EQ(log_, (lines{"started 0", "finished 0"}));
}

TEST_F(mpv_player_test, does_what_the_listener_asks_for_and_counts_what_is_heard_each_time) {
    struct row {
        std::vector<std::pair<std::string, std::vector<request>>> asked;  // after a line of the log, each once
        lines log;
    };
    const auto list = static_cast<double>(repeat_mode::list), track = static_cast<double>(repeat_mode::track);
    const lines all{"started 0", "counted 0", "finished 0", "started 1", "counted 1", "finished 1"};
    for (const auto& [asked, expected] : {
             row{{{"started 0", {{action::next}}}}, {"started 0", "finished 0", "started 1", "counted 1", "finished 1"}},
             row{{{"started 0", {{action::next}, {action::next}}}}, {"started 0", "finished 0"}},
             row{{{"started 1", {{action::previous}}}},
                 {"started 0", "counted 0", "finished 0", "started 1", "finished 1", "started 0", "counted 0", "finished 0",
                  "started 1", "counted 1", "finished 1"}},
             row{{{"started 0", {{action::previous}}}},
                 {"started 0", "finished 0", all[0], all[1], all[2], all[3], all[4], all[5]}},
             row{{{"started 0", {{action::pause}, {action::toggle_pause}, {action::rate, 3}}}}, all},
             row{{{"started 0", {{action::toggle_stop_after}}}}, {"started 0", "counted 0", "finished 0"}},
             row{{{"started 0", {{action::set_repeat, track}}}},
                 {"started 0", "counted 0", "finished 0", "started 0", "counted 0"}},
             row{{{"started 1", {{action::set_repeat, list}}}}, {all[0], all[1], all[2], all[3], all[4], all[5], all[0]}},
             row{{{"started 0", {{action::quit}}}}, {"started 0", "finished 0"}},
         }) {
        auto callbacks = recording();
        mpv_player* playing = nullptr;
        auto left = asked;
        callbacks.on_turn = [&] {
            if (log_.size() > expected.size() + 1) stop_ = true;
            for (const auto& line : log_)
                for (auto& [after, requests] : left)
                    if (line == after)
                        for (const auto& each : std::exchange(requests, {})) playing->perform(each);
        };
        // In real time, a second each, so that a busy machine hears the listener in time.
        mpv_player player({.audio = audio_output::null}, callbacks);
        playing = &player;
        player.run(std::vector<play_item>{{path("a.wav"), 1.0, {}}, {path("a.flac"), 1.0, {}}}, queue(2), stop_);
        if (stop_) log_.resize(expected.size());  // repeated without an end
        EXPECT_EQ(log_, expected);
        log_.clear();
        stop_ = false;
    }
}

TEST_F(mpv_player_test, plays_what_an_edit_leaves) {
    using change = std::function<bool(queue&)>;
    const auto remove = [](queue::entries which) { return change([which](queue& order) { return order.remove(which); }); };
    struct row {
        const char* after;
        change edit;
        std::size_t added;
        const char* started;
    };
    for (const auto& [after, edit, added, expected] :
         {row{"started 0", remove({1}), 0, "0"}, row{"started 0", remove({0}), 0, "01"},
          row{"started 1", remove({0}), 0, "01"}, row{"started 0", remove({0, 1}), 0, "0"},
          row{"started 1", remove({1}), 0, "01"},
          row{"started 0", [](queue& order) { return order.add(std::vector<shuffle_traits>(1), true), true; }, 1, "021"},
          row{"started 0", [](queue& order) { return order.move(1, 0), true; }, 0, "0"},
          row{"started 0", [](queue& order) -> bool { throw std::runtime_error((order.move(1, 0), "no")); }, 0, "01"}}) {
        const std::vector<play_item> items{{path("a.wav"), 1.0, {}}, {path("a.flac"), 1.0, {}}};
        mpv_player* playing = nullptr;
        std::future<void> done;
        std::string started;
        auto callbacks = recording();
        callbacks.on_started = [&](std::size_t i) {
            started += std::to_string(i);
            log_.push_back("started " + std::to_string(i));
        };
        callbacks.on_turn = [&] {
            if (done.valid() || std::ranges::find(log_, after) == log_.end()) return;
            queue_edit wanted{.added = {items.begin(), items.begin() + static_cast<std::ptrdiff_t>(added)}, .change = edit};
            done = wanted.done.get_future();
            playing->edit(std::move(wanted));
        };
        mpv_player player({.audio = audio_output::null}, callbacks);
        playing = &player;
        EXPECT_TRUE(player.run(items, queue(2), stop_));
        EXPECT_EQ(started, expected);
        log_.clear();
    }
}

TEST_F(mpv_player_test, skips_what_the_listener_leaves_for_something_else_in_its_first_half) {
    struct row {
        std::vector<request> asked;
        int skips;
    };
    for (const auto& [asked, expected] :
         {row{{{action::next}, {action::next}}, 1}, row{{{action::make_way}}, 1}, row{{{action::quit}}, 0},
          row{{{action::previous}}, 0}, row{{{action::seek_to, 49}, {action::next}}, 1},
          row{{{action::seek_to, 51}, {action::next}}, 0}}) {
        int skips = 0, turns = 0;
        mpv_player* playing = nullptr;
        auto callbacks = recording();
        callbacks.on_skipped = [&](std::size_t, double) { ++skips; };
        callbacks.on_turn = [&] {
            if (log_.empty() || ++turns > 9) return void(stop_ = turns > 9);
            for (const auto& each : turns == 1 ? asked : std::vector<request>{}) playing->perform(each);
        };
        mpv_player player({.audio = audio_output::null}, callbacks);
        playing = &player;
        player.run(std::vector<play_item>{{path("long.flac"), {}, {}}}, queue(1), stop_);
        EXPECT_EQ(skips, expected) << &asked;
        log_.clear();
        stop_ = false;
    }
}

TEST_F(mpv_player_test, ends_a_repeated_list_of_which_nothing_can_be_played) {
    for (const char* name : {"noise.mp3", "missing.mp3"}) {
        queue order(2, {.repeat = repeat_mode::list});
        EXPECT_TRUE(mpv_player({.fast = true}, recording())
                        .run(std::vector<play_item>{{path(name), {}, {}}, {path(name), {}, {}}}, order, stop_));
        EXPECT_EQ(std::exchange(log_, {}), (lines{"error 0", "error 1"}));
    }
}

TEST_F(mpv_player_test, goes_on_inside_a_track_without_counting_what_was_skipped) {
    auto callbacks = recording();
    double first = -1;
    callbacks.on_progress = [&](std::size_t, double position, double) { first = first < 0 ? position : first; };
    mpv_player player({.fast = true, .start_at = 60}, callbacks);
    EXPECT_TRUE(player.run(std::vector<play_item>{{path("long.flac"), 5.0, {}}}, queue(1), stop_));
    EXPECT_EQ(log_, (lines{"started 0", "finished 0"}));
    EXPECT_EQ(first, 60);
}

TEST_F(mpv_player_test, stops_when_told_to_and_leaves_the_rest_alone) {
    auto callbacks = recording();
    callbacks.on_progress = [this](auto...) { stop_ = true; };
    mpv_player player({.audio = audio_output::null, .fast = false}, callbacks);
    const std::vector<play_item> items{{path("long.flac"), {}, {}}, {path("a.wav"), {}, {}}};
    EXPECT_FALSE(player.run(items, queue(items.size()), stop_));
    EXPECT_EQ(log_, (lines{"started 0", "finished 0"}));
}

TEST_F(mpv_player_test, passes_on_what_a_callback_throws_and_can_play_again) {
    bool thrown = false;
    auto callbacks = recording();
    callbacks.on_counted = [&](std::size_t, double) {
        if (!std::exchange(thrown, true)) throw std::runtime_error("the database is full");
    };
    mpv_player player({.audio = audio_output::null, .fast = true}, callbacks);
    const std::vector<play_item> items{{path("a.wav"), {}, {}}};
    EXPECT_THROW(player.run(items, queue(items.size()), stop_), std::runtime_error);
    EXPECT_TRUE(player.run(items, queue(items.size()), stop_));
    EXPECT_EQ(log_, (lines{"started 0", "started 0", "finished 0"}));
}

/// Lists the files of a folder that are opened.
class open_watch {
public:
    explicit open_watch(const fs::path& folder) { inotify_add_watch(notify_, folder.c_str(), IN_OPEN); }
    ~open_watch() { close(notify_); }
    std::set<std::string> opened() const {
        std::set<std::string> names;
        alignas(inotify_event) char buffer[65536];
        for (auto size = read(notify_, buffer, sizeof buffer), at = ssize_t{0}; at < size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
            if (event->len != 0) names.insert(event->name);
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
        return names;
    }

private:
    const int notify_ = inotify_init1(IN_NONBLOCK);
};

TEST_F(mpv_player_test, opens_nothing_that_a_file_refers_to_neither_on_disk_nor_in_the_network) {
    // A listening socket sees the attempt to connect even if nobody accepts.
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    sockaddr_in address{.sin_family = AF_INET, .sin_port = 0, .sin_addr = {htonl(INADDR_LOOPBACK)}, .sin_zero = {}};
    socklen_t size = sizeof address;
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), size), 0);
    ASSERT_EQ(listen(listener, 8), 0);
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    const std::string url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/a";
    const std::string hls = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:5\n#EXTINF:5,\n";
    const std::string scripts[] = {
        "# mpv EDL v0\n" + url + ",0,5\n",
        "# mpv EDL v0\n" + path("a.wav") + ",0,5\n",
        "#EXTM3U\n" + path("a.wav") + '\n' + url + '\n',
        hls + path("a.mp3") + "\n#EXT-X-ENDLIST\n",
        hls + url + "\n#EXT-X-ENDLIST\n",
        "ffconcat version 1.0\nfile a.wav\n",
        "[playlist]\nFile1=" + path("a.wav") + "\nNumberOfEntries=1\nVersion=2\n",
        "FILE \"" + path("a.wav") + "\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n",
        // Opens a port and waits for sound to come.
        "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio 5004 RTP/AVP 0\n",
    };
    const open_watch watch(folder_);
    std::ofstream(path("side.srt")) << "1\n00:00:00,000 --> 00:00:05,000\nx\n";
    fs::copy_file(path("a.mp3"), path("side.mp3"));
    fs::copy_file(path("a.mp3"), path("cover.jpg"));
    (void)watch.opened();
    for (const auto& script : scripts) {
        std::ofstream(path("script.mp3")) << script;
        EXPECT_TRUE(play({{path("script.mp3"), {}, {}}}, recording()));
        EXPECT_EQ(std::exchange(log_, {}), lines{"error 0"}) << script;
        EXPECT_EQ(watch.opened(), std::set<std::string>{"script.mp3"}) << script;
        EXPECT_EQ(accept(listener, nullptr, nullptr), -1) << "connected: " << script;
    }
    EXPECT_TRUE(play({{path("side.mp3"), {}, {}}}, recording()));
    EXPECT_EQ(watch.opened(), std::set<std::string>{"side.mp3"}) << "what lies beside it is left alone";
    close(listener);
}

TEST_F(mpv_player_test, tells_that_nothing_is_heard_when_no_device_can_be_opened) {
    for (const char* name : {"PULSE_SERVER", "PIPEWIRE_REMOTE", "ALSA_CONFIG_PATH"}) setenv(name, "/nowhere", 1);
    auto callbacks = recording();
    callbacks.on_counted = {};
    mpv_player player({.audio = audio_output::automatic, .fast = false}, callbacks);
    EXPECT_TRUE(player.run(std::vector<play_item>{{path("a.wav"), 1.2, {}}, {path("a.wav"), 1.2, {}}}, queue(2), stop_));
    EXPECT_EQ(std::ranges::count(log_, "not heard"), 1);
    EXPECT_EQ(std::ranges::count(log_, "heard"), 0);
    mpv_player asked({.audio = audio_output::null, .fast = false}, callbacks);
    log_.clear();
    EXPECT_TRUE(asked.run(std::vector<play_item>{{path("a.wav"), 1.2, {}}}, queue(1), stop_));
    EXPECT_EQ(log_, (lines{"started 0", "finished 0"}));
}

}  // namespace
}  // namespace ostrevan::playback
