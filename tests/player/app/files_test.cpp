#include <gtest/gtest.h>

#include <future>

#include "player/app/track_selection.h"
#include "player/core/profile_folder.h"
#include "player/services/clipboard_service.h"
#include "player/services/tag_update_service.h"
#include "player/tags/rewrite.h"
#include "tests/player/app/doubles.h"
#include "tests/player/temporary_folder.h"
#include "tests/support/memory_tracks.h"

namespace ostrevan::app {
namespace {

struct files : temporary_folder {
    /// A second of silence.
    void write_sound(const std::string& name) const {
        std::string sound("RIFF\xA4\x1F\0\0WAVEfmt \x10\0\0\0\1\0\1\0\x40\x1F\0\0\x40\x1F\0\0\1\0\x8\0data\x80\x1F\0\0", 44);
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        write(path(name), sound.append(8064, '\x80'));
    }
    world player;
};

struct filter : file_info_filter {
    std::function<bool(file_info_builder& info)> apply;
    explicit filter(std::function<bool(file_info_builder& info)> how) : apply(std::move(how)) {}
    bool apply_filter(const metadb_handle_ptr&, file_info_builder& info) override { return apply(info); }
};

TEST_F(files, a_later_request_of_the_user_overtakes_the_background_but_not_at_the_same_file) {
    std::promise<void> all_are_queued;
    std::string order;
    service_uncounted_t<services::tag_update_service_impl> updates(player.loop, player.ui, [](const auto&) {});
    for (const auto* name : {"1.wav", "2.wav", "3.wav", "4.wav"}) write_sound(name);
    const auto update = [&](char batch, std::string_view names, unsigned options = 0) {
        metadb_handle_list tracks;
        for (const char name : names) tracks.items().push_back(support::make_track(path(std::string(1, name) + ".wav"), {}));
        const auto note = [&, batch](file_info_builder&) {
            if (batch == '-') all_are_queued.get_future().wait();
            return order += batch, false;
        };
        updates.update_async(tracks, service_new<filter>(note), nullptr, options, nullptr);
    };
    update('-', "3");
    update('a', "1", tag_update_service::option_background);
    update('b', "2", tag_update_service::option_background);
    update('C', "3");
    update('D', "31");
    update('E', "4");
    update('f', "1", tag_update_service::option_background);
    all_are_queued.set_value();
    player.loop.run_until_idle();
    EXPECT_EQ(order, "-CaDDEbf");
}

TEST_F(files, what_became_of_a_request_is_told) {
    struct note : completion_notify {
        lines& said;
        explicit note(lines& log) : said(log) {}
        void on_completion(unsigned status) override { said.push_back("status " + std::to_string(status)); }
    };
    auto& said = player.ui.said;
    service_uncounted_t<services::tag_update_service_impl> updates(
        player.loop, player.ui, [&](const std::vector<services::tag_rewrite>& made) {
            for (const auto& file : made)
                said.push_back(std::to_string(file.before_in_file.meta_count()) + std::to_string(file.after.meta_count()));
        });
    write_sound("1.wav");
    const auto update = [&](const std::string& name, unsigned options, std::function<bool(file_info_builder&)> apply) {
        const metadb_handle_list tracks{support::make_track(path(name), {}), support::make_track(path("1.wav"), {})};
        updates.update_async(tracks, service_new<filter>(std::move(apply)), nullptr, options, service_new<note>(said));
        player.loop.run_until_idle();
        return std::exchange(said, {});
    };
    const auto set_title = [](file_info_builder& info) { return info.meta_set("title", "x"), true; };
    EXPECT_EQ(update("1.wav", 0, set_title), (lines{"01", "status 0"}));
    EXPECT_EQ(update("1.wav", 0, [](file_info_builder& info) { return info.meta_set("title", "y"), true; }),
              (lines{"11", "status 0"}));
    EXPECT_EQ(update("1.wav", 0, [](auto&) -> bool { throw 1; }),
              (lines{"app_tests: unknown error", "app_tests: unknown error", "failed",
                     "2 of 2 files could not be updated and are as they were.", "status 1"}));
    const auto refused = update("a.cue", tag_update_service::option_silent, [](auto&) { return false; });
    EXPECT_EQ(refused.size(), 2U);
    EXPECT_EQ(refused.back(), "status 1");
}

TEST_F(files, edits_that_a_component_has_not_followed_are_told_of_again) {
    const std::string song = path("music/1.wav"), folders[] = {path("music")};
    write_sound("music/1.wav");
    const struct {
        std::size_t kept;
        bool fails, has_followed;
    } runs[] = {{0, true, true}, {1, false, false}, {2, false, true}, {0, false, true}};
    for (const auto& [kept, fails, has_followed] : runs) {
        service_uncounted_t<follower> followers[2];
        session run({path("profile"), path("none"), true}, *core::profile_lock::take(core::prepare_profile(path("profile"))),
                    player.ui);
        EXPECT_EQ(run.library.unfinished_edits()().size(), kept);
        (void)run.library.add_folders(folders);
        if (fails) followers[0].fails = [] { throw 1; };
        followers[0].outcome.has_followed = has_followed;
        for (auto& each : followers) run.services.add(each);
        tags::rewrite_file(song,
                           [&](file_info_builder& info) { return info.meta_set("title", std::to_string(kept)), true; });
        (void)run.library.rescan();
        run.run_until_idle();
        EXPECT_EQ(followers[1].calls, 1);
    }
}

TEST_F(files, are_taken_in_the_order_of_listening_from_folders_outside_the_library) {
    for (const auto* name : {"10.wav", "2.wav", "9.wav", "1.wav", "b/1.wav", "cd 10/1.wav", "cd 9/1.wav"}) write_sound(name);
    write(path("2.cue"), "FILE \"2.wav\" WAVE\n TRACK 01 AUDIO\n INDEX 01 00:00:00\n TRACK 02 AUDIO\n INDEX 01 00:00:30\n");
    write(path("cover.jpg"), "x");
    session run({path("profile"), path("none"), true}, *core::profile_lock::take(core::prepare_profile(path("profile"))),
                player.ui);
    const auto taken = [&](lines places) {
        for (auto& place : places) place = path(place);
        const auto chosen = tracks_at(run, places);
        std::string text = std::to_string(chosen.no_audio.size()) + std::to_string(chosen.problems.size());
        for (const auto& track : chosen.tracks)
            text +=
                ' ' + track->location().path.substr(folder_.size() + 1) + '|' + std::to_string(track->location().subsong);
        return text;
    };
    EXPECT_EQ(taken({""}), "00 2.cue|1 2.cue|2 1.wav|0 9.wav|0 10.wav|0 b/1.wav|0 cd 9/1.wav|0 cd 10/1.wav|0");
    EXPECT_EQ(taken({"2.cue|2", "cover.jpg", "2.cue|3", "none.wav", "b/../1.wav"}), "12 2.cue|2 1.wav|0");
}

TEST_F(files, of_the_clipboard_are_for_their_user_alone) {
    service_uncounted_t<services::clipboard_service_impl> clipboard(path("own"));
    const std::vector<std::uint8_t> bytes{0, 255, 7};
    std::vector<std::uint8_t> got;
    clipboard.set("format", bytes);
    EXPECT_EQ(mode(path("own")), 0700U);
    EXPECT_EQ(mode(path("own/clipboard")), 0600U);
    EXPECT_TRUE(clipboard.has_format("format") && clipboard.get("format", got));
    EXPECT_EQ(got, bytes);
    for (const auto* other : {"forma", "format2"})
        EXPECT_FALSE(clipboard.has_format(other) || clipboard.get(other, got)) << other;
    ::chmod(path("own/clipboard").c_str(), 0640);
    EXPECT_FALSE(clipboard.has_format("format") || clipboard.get("format", got));
    ::chmod(path("own").c_str(), 0750);
    EXPECT_THROW(clipboard.set("format", bytes), std::runtime_error);
}

}  // namespace
}  // namespace ostrevan::app
