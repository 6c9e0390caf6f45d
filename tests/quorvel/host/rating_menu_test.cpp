#include <algorithm>

#include "ostrevan/library_columns.h"
#include "quorvel/host/edit_rating.h"
#include "tests/support/statistics_test.h"

namespace {

using ostrevan::metadb_handle_list;
using ostrevan::popup_message_v3;
using quorvel::rating_not_set;

const nuv::guid rating_item = nuv::guid_of("{15D9655C-F6DE-4B98-8942-A9DAE2F9AD75}");

class rating_menu : public support::statistics_test {
protected:
    ostrevan::context_menu_item* item = find_command("Rating").first;

    std::unique_ptr<ostrevan::context_menu_node> open(const metadb_handle_list& tracks,
                                                      const nuv::guid& caller = ostrevan::context_caller::selection) {
        return item->make_node(0, tracks, caller);
    }
    /// The entries on one line: "*" before a checked one, "!" before one that cannot be chosen.
    static std::string shown(ostrevan::context_menu_node& root) {
        std::string line;
        for (std::size_t i = 0; i < root.child_count(); ++i) {
            ostrevan::context_menu_node::display_t entry;
            if (!root.child(i).get_display(entry)) continue;
            if ((entry.flags & 9) == 9) line += '*';
            if ((entry.flags & 6) == 6) line += '!';
            line += entry.text + ' ';
        }
        return line;
    }
    static void choose(ostrevan::context_menu_node& root, const std::string& text) {
        for (std::size_t i = 0; i < root.child_count(); ++i) {
            ostrevan::context_menu_node::display_t entry;
            if (root.child(i).get_display(entry) && entry.text == text) return root.child(i).execute();
        }
        FAIL() << "no entry " << text;
    }
};

TEST_F(rating_menu, checks_what_all_tracks_share) {
    const auto none = rated("none", rating_not_set), zero = rated("zero", 42), three = rated("three", 149),
               also_three = rated("also three", 128), four = rated("four", 191);
    const std::vector<std::pair<metadb_handle_list, const char*>> rows = {
        {{none}, "*<not set> 1 2 3 4 5 - + "},       {{three, also_three}, "<not set> 1 2 *3 4 5 - + "},
        {{three, four}, "<not set> 1 2 3 4 5 - + "}, {{none, three}, "<not set> 1 2 3 4 5 - + "},
        {{zero}, "<not set> 1 2 3 4 5 - + "},        {{three, four, three}, "<not set> 1 2 3 4 5 - + "},
    };
    for (const auto& [tracks, line] : rows) EXPECT_EQ(shown(*open(tracks)), line);
}

TEST_F(rating_menu, does_not_look_at_a_thousand_tracks) {
    const auto three = rated("three", 149);
    metadb_handle_list tracks;
    tracks.items().assign(999, three);
    EXPECT_EQ(shown(*open(tracks)), "<not set> 1 2 *3 4 5 - + ");
    tracks.items().push_back(three);
    const auto root = open(tracks);
    EXPECT_EQ(shown(*root), "*<not set> 1 2 3 4 5 - + ");
    choose(*root, "<not set>");
    EXPECT_EQ(stored(three).rating, 149U) << "a checked entry does nothing";
    item->context_command_by_node(0, nuv::guid_of("{1E33065E-B6BC-4970-8035-D760695C3F90}"), tracks, {});
    EXPECT_EQ(stored(three).rating, rating_not_set) << "its identifier clears all the same";
}

TEST_F(rating_menu, is_hidden_without_tracks_unless_commands_are_enumerated) {
    ostrevan::context_menu_node::display_t entry;
    EXPECT_FALSE(open({})->get_display(entry));
    EXPECT_FALSE(item->item_get_display_data(entry, 0, metadb_handle_list{}, ostrevan::context_caller::selection));
    EXPECT_EQ(shown(*open({})), "*!<not set> !1 !2 !3 !4 !5 !- !+ ");

    const auto& enumeration = ostrevan::context_caller::command_enumeration;
    const auto root = open({}, enumeration);
    ASSERT_TRUE(root->get_display(entry));
    EXPECT_EQ(entry.text, "Rating");
    EXPECT_EQ(shown(*root), "*<not set> 1 2 3 4 5 - + ");
    EXPECT_TRUE(item->item_get_display_data(entry, 0, metadb_handle_list{}, enumeration));
}

/// Copies of a track share a record, which a step moves once.
TEST_F(rating_menu, runs_every_entry_by_menu_and_by_identifier) {
    const struct {
        const char *entry, *id;
        std::uint32_t from, to;
    } rows[] = {
        {"<not set>", "{1E33065E-B6BC-4970-8035-D760695C3F90}", 149, rating_not_set},
        {"1", "{4C26AAFC-7FAD-44A0-8859-2419281BB836}", rating_not_set, 63},
        {"2", "{827A703C-1D71-4542-81AD-67742BAA01B1}", rating_not_set, 106},
        {"3", "{6DF20AF6-7B20-45B4-9427-1D155C11B036}", rating_not_set, 149},
        {"4", "{56D43427-5F32-49F0-ABFA-2C4CC4BCB2C1}", rating_not_set, 191},
        {"5", "{9E15E290-2529-40C9-B6F2-F71778871855}", rating_not_set, 234},
        {"-", "{479DF963-FF86-4C93-84B8-BC33E9B3814C}", rating_not_set, 106},
        {"-", "{479DF963-FF86-4C93-84B8-BC33E9B3814C}", 20, 63},
        {"-", "{479DF963-FF86-4C93-84B8-BC33E9B3814C}", 150, 106},
        {"-", "{479DF963-FF86-4C93-84B8-BC33E9B3814C}", 70, 63},
        {"-", "{479DF963-FF86-4C93-84B8-BC33E9B3814C}", 300, 191},
        {"+", "{3AEF56A1-03A5-4EB7-AE6C-7AE32B4847D6}", rating_not_set, 149},
        {"+", "{3AEF56A1-03A5-4EB7-AE6C-7AE32B4847D6}", 0, 63},
        {"+", "{3AEF56A1-03A5-4EB7-AE6C-7AE32B4847D6}", 234, 234},
    };
    const auto track = rated("t", 0);
    const metadb_handle_list both{track, support::make_track("/copies/t", {{"artist", "a"}, {"title", "t"}})};
    for (const auto& [entry, id, from, to] : rows) {
        put(track, {.rating = from});
        choose(*open(both), entry);
        EXPECT_EQ(stored(track).rating, to) << entry << " in the menu";
        EXPECT_EQ(player.index.refreshes.size(), from == to ? 0U : 1U);

        put(track, {.rating = from});
        item->context_command_by_node(0, *nuv::parse_guid(id), both, {});
        EXPECT_EQ(stored(track).rating, to) << entry << " by identifier";
    }
    item->context_command_by_node(0, rating_item, both, {});
    EXPECT_EQ(stored(track).rating, 234U);
}

TEST_F(rating_menu, a_click_into_its_column_gives_the_stars_up_to_there) {
    auto& columns = player.component_service<ostrevan::library_column_provider>();
    const auto clicks = ostrevan::query_service<ostrevan::library_column_clicks>(columns);
    std::string texts;
    for (std::size_t i = 0; i < 6; ++i) texts += clicks->get_click_text(i) + '|';
    EXPECT_EQ(texts, "||||\u2606\u2606\u2606\u2606\u2606||");
    const auto track = rated("t", rating_not_set);
    const std::pair<double, std::uint32_t> rows[] = {{0, 63}, {0.19, 63}, {0.21, 106}, {0.79, 191}, {1, 234}, {0.9, 234}};
    for (const auto& [place, rating] : rows) {
        clicks->on_click(4, place, metadb_handle_list{track});
        EXPECT_EQ(stored(track).rating, rating) << place;
    }
    put(track, {.rating = 150});
    clicks->on_click(4, 0.5, metadb_handle_list{track});
    EXPECT_EQ(stored(track).rating, 150U) << "which shows three stars already";
}

TEST_F(rating_menu, asks_only_beyond_a_hundred_different_tracks) {
    auto tracks = support::make_tracks(100);
    for (std::size_t i = 0; i < 60; ++i) tracks.items().push_back(tracks[i]);
    quorvel::editRating(tracks, 63, 0);
    EXPECT_TRUE(player.popups.questions().empty());
    ASSERT_EQ(player.index.refreshes.size(), 1U);
    EXPECT_EQ(player.index.refreshes[0].size(), 100U);

    tracks = support::make_tracks(101);
    const auto last = tracks[100];
    for (const unsigned answer : {popup_message_v3::answer_no, popup_message_v3::answer_ok, popup_message_v3::answer_yes}) {
        quorvel::editRating(metadb_handle_list(tracks), rating_not_set, +1);
        EXPECT_EQ(question(), "04 Warning: You're about to edit rating of 101 tracks. Continue?");
        EXPECT_EQ(stored(last).rating, rating_not_set);
        player.popups.answer(answer);
    }
    EXPECT_EQ(stored(last).rating, 149U);
    EXPECT_TRUE(player.tag_updates.requests.empty());
    quorvel::tag_sync_enabled.set(true);
    quorvel::editRating(metadb_handle_list{last}, 234, 0);
    EXPECT_EQ(player.tag_updates.requests.at(0).options, 0U) << "file tags follow when the user wants that";
}

TEST_F(rating_menu, is_for_the_main_thread) {
    EXPECT_DEATH(std::thread([] { quorvel::editRating(metadb_handle_list{}, 63, 0); }).join(),
                 "^core_api::ensure_main_thread");
    EXPECT_DEATH(std::thread([&] { (void)open({}); }).join(), "^core_api::ensure_main_thread");
}

}  // namespace
