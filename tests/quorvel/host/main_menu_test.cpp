#include "ostrevan/main_menu.h"

#include "quorvel/common/settings.h"
#include "tests/support/statistics_test.h"

namespace {

class main_menu : public support::statistics_test {
protected:
    ostrevan::main_menu_commands& menu = player.component_service<ostrevan::main_menu_commands>();

    /// The commands as they are shown now, each with its flags behind it.
    std::vector<std::string> shown() {
        std::vector<std::string> texts;
        ostrevan::main_menu_commands::display_t display;
        for (std::size_t i = 0; i < menu.get_command_count(); ++i)
            if (menu.get_display(i, display)) texts.push_back(display.text + ' ' + std::to_string(display.flags));
        return texts;
    }
};

TEST_F(main_menu, keeps_the_identifiers_that_players_have_stored) {
    std::vector<std::string> lines{nuv::guid_text(menu.get_parent())};
    std::string description;
    for (std::size_t i = 0; i < menu.get_command_count(); ++i) {
        EXPECT_TRUE(menu.get_description(i, description));
        lines.push_back(nuv::guid_text(menu.get_command(i)) + ' ' + menu.get_name(i) + ": " + description);
    }
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "A2260154-F88C-4FE3-8872-AABA85A63C1E",
                         "143BCCD5-28BE-47A6-BEE0-DFF823907BB0 Show recently played: Shows tracks from your Media Library "
                         "played during last week.",
                         "F64C27E0-C5B8-4675-B62C-EF1A79CA147E Show recently added: Shows tracks recently added to your "
                         "Media Library.",
                         "764E7F3A-7643-4126-9FA2-2C3AC3671589 Monitor playing tracks: Toggles monitoring of currently "
                         "played tracks and updates of first played, last played and played count values.",
                         "F1BB49EF-68F3-4BFD-BC16-120046E27A6E Export statistics...: Exports playback statistics into an "
                         "XML file.",
                         "5622641A-1C18-450C-8E2F-48863AA0307F Import statistics...: Imports playback statistics from an "
                         "XML file.",
                     }));
}

TEST_F(main_menu, shows_the_searches_as_far_as_the_library_goes) {
    const std::vector<std::string> rest{"Monitor playing tracks 2", "Export statistics... 0", "Import statistics... 0"};
    const auto with_searches = [&](const char* flags) {
        std::vector<std::string> all{std::string("Show recently played ") + flags,
                                     std::string("Show recently added ") + flags};
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    };
    EXPECT_EQ(shown(), with_searches("0"));
    player.library.enabled = false;
    EXPECT_EQ(shown(), with_searches("1"));

    ostrevan::service_uncounted_t<support::recorded_searches> second;
    player.offer(second.class_guid, second);
    EXPECT_EQ(shown(), rest) << "two search windows";
    player.withdraw(second.class_guid);
    EXPECT_EQ(shown(), rest) << "no search window";
}

TEST_F(main_menu, searches_what_was_played_and_added_this_week) {
    menu.execute(0);
    menu.execute(1);
    EXPECT_EQ(player.searches.queries,
              (std::vector<std::string>{"%last_played% DURING LAST 1 WEEK SORT DESCENDING BY %last_played%",
                                        "%added% DURING LAST 1 WEEK SORT DESCENDING BY %added%"}));
    player.searches.fail = true;
    menu.execute(0);
    player.withdraw(player.searches.class_guid);
    menu.execute(1);
    EXPECT_EQ(player.popups.messages,
              (std::vector<support::shown_message>{
                  {"Could not activate Media Library Search: the window is gone", "Information", 1},
                  {"Could not activate Media Library Search: Service not found", "Information", 1}}));
}

TEST_F(main_menu, switches_monitoring) {
    for (const bool on : {false, true}) {
        menu.execute(2);
        EXPECT_EQ(quorvel::monitoring_enabled.get(), on);
        EXPECT_EQ(shown()[2], on ? "Monitor playing tracks 2" : "Monitor playing tracks 0");
    }
}

TEST_F(main_menu, refuses_an_index_out_of_range) {
    std::string text;
    EXPECT_DEATH((void)menu.get_command(5), "Bug check");
    EXPECT_DEATH((void)menu.get_name(5), "Bug check");
    EXPECT_DEATH((void)menu.get_description(5, text), "Bug check");
    EXPECT_DEATH(menu.execute(5), "Bug check");
}

}  // namespace
