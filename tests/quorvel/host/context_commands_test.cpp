#include "quorvel/interchange/clipboard_transfer.h"
#include "tests/support/statistics_test.h"

namespace {

using ostrevan::metadb_handle_list;
using ostrevan::popup_message_v3;

constexpr quorvel::t_playback_stats played{
    .play_count = 5, .first_played = 10, .last_played = 20, .added = 5, .rating = 149};

class context_commands : public support::statistics_test {
protected:
    support::memory_track_ptr track = support::make_track("/a", {{"artist", "a"}, {"title", "t"}});

    void run(const std::string& name, const metadb_handle_list& tracks) {
        const auto [group, index] = find_command(name);
        group->context_command(index, tracks, ostrevan::context_caller::selection);
    }
    bool grayed(const std::string& name) {
        const auto [group, index] = find_command(name);
        ostrevan::context_menu_node::display_t shown;
        EXPECT_TRUE(
            group->item_get_display_data(shown, index, metadb_handle_list{track}, ostrevan::context_caller::selection));
        return shown.flags == 6;
    }
};

TEST_F(context_commands, reset_as_the_setting_was_when_asked) {
    const auto bare = support::make_track("/b", {{"artist", "b"}, {"title", "t"}, {"last_played", "2024-03-05 07:08:09"}});
    const auto tagged = support::make_info({{"artist", "a"}, {"title", "t"}, {"play_count", "5"}, {"rating", "3"}});
    run("Reset statistics", {});
    for (const bool clears_tags : {false, true})
        for (const unsigned answer : {popup_message_v3::answer_cancel, popup_message_v3::answer_ok}) {
            track->publish(tagged);
            put(track, played);
            quorvel::tag_sync_enabled.set(clears_tags);
            run("Reset statistics", metadb_handle_list{track, bare});
            EXPECT_EQ(question(), clears_tags ? "31 Playback Statistics: This will reset playback statistics for selected "
                                                "items and rewrite file tags removing statistics info from them. Continue?"
                                              : "31 Playback Statistics: This will reset playback statistics for selected "
                                                "items. Continue?");
            quorvel::tag_sync_enabled.set(!clears_tags);
            player.popups.answer(answer);
            EXPECT_EQ(stored(track), answer == popup_message_v3::answer_ok ? quorvel::t_playback_stats{.added = 5} : played);
            EXPECT_EQ(player.tag_updates.requests.size(), clears_tags && answer == popup_message_v3::answer_ok ? 1U : 0U);
        }
    EXPECT_EQ(player.tag_updates.requests[0].options, 0U);
    EXPECT_EQ(player.tag_updates.requests[0].parent, player.main_window());
    EXPECT_EQ(player.tag_updates.run_next(), std::vector<ostrevan::metadb_handle_ptr>{track})
        << "only files with statistics";
    EXPECT_EQ(track->info()->info(), support::make_info({{"artist", "a"}, {"title", "t"}}));
}

TEST_F(context_commands, write_tags_after_ok_whatever_the_setting) {
    put(track, {.play_count = 7});
    const auto remote = support::make_track("http://a/b", {{"artist", "b"}, {"title", "t"}});
    for (const unsigned answer : {popup_message_v3::answer_cancel, popup_message_v3::answer_ok}) {
        EXPECT_TRUE(player.tag_updates.requests.empty());
        run("Write statistics to file tags", {track, remote});
        EXPECT_EQ(question(), "01 Playback Statistics: This will update file tags with playback statistics info. Continue?");
        player.popups.answer(answer);
    }
    ASSERT_EQ(player.tag_updates.requests.size(), 1U);
    EXPECT_EQ(player.tag_updates.requests[0].tracks.get_count(), 2U) << "the user asked for these very files";
    EXPECT_EQ(player.tag_updates.requests[0].options, 0U);
}

TEST_F(context_commands, import_tags_once_they_have_been_read_again) {
    track->publish(support::make_info({{"artist", "a"}, {"title", "t"}, {"play_count", "12"}}));
    run("Import statistics from file tags", {track});
    run("Import statistics from file tags", {track});
    ASSERT_EQ(player.reloads.requests.size(), 2U);
    EXPECT_EQ(player.reloads.requests[0].mode, 2U);
    EXPECT_EQ(player.reloads.requests[0].options, 4U);
    EXPECT_EQ(player.reloads.requests[0].parent, player.main_window());
    EXPECT_EQ(stored(track).play_count, 0U);

    player.reloads.requests[0].notify->on_completion(ostrevan::completion_notify::status_failed);
    EXPECT_EQ(stored(track).play_count, 0U);
    player.reloads.requests[1].notify->on_completion(ostrevan::completion_notify::status_success);
    EXPECT_EQ(stored(track).play_count, 12U);

    player.withdraw(ostrevan::info_reload_service::class_guid);
    EXPECT_THROW(run("Import statistics from file tags", {track}), ostrevan::exception_service_extension_not_found);
}

TEST_F(context_commands, paste_is_gray_unless_statistics_have_been_copied) {
    EXPECT_TRUE(grayed("Paste statistics"));
    player.clipboard.set("text", {});
    EXPECT_TRUE(grayed("Paste statistics"));
    player.withdraw(player.clipboard.class_guid);
    EXPECT_TRUE(grayed("Paste statistics"));
    player.offer(player.clipboard.class_guid, player.clipboard);
    run("Copy statistics", {track});
    EXPECT_FALSE(grayed("Paste statistics"));
    player.clipboard.set("text", {});
    EXPECT_FALSE(grayed("Copy statistics"));

    run("Copy statistics", {track});
    run("Paste statistics", {track});
    EXPECT_TRUE(question().starts_with("01 Playback Statistics: The following data"));
}

}  // namespace
