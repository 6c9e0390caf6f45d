#include "ostrevan/main_menu.h"

#include "tests/support/statistics_test.h"

namespace {

class main_menu : public support::statistics_test {
protected:
    ostrevan::main_menu_commands& menu = player.component_service<ostrevan::main_menu_commands>();

    /// The current commands with their flags.
    std::string shown() {
        std::string texts;
        ostrevan::main_menu_commands::display_t display;
        for (std::size_t i = 0; i < menu.get_command_count(); ++i)
            if (menu.get_display(i, display)) texts += display.text + ' ' + std::to_string(display.flags) + ' ';
        return texts;
    }
};

TEST_F(main_menu, shows_what_can_be_done_now) {
    const std::string rest = "Monitor playing tracks 2 Export statistics... 0 Import statistics... 0 ";
    EXPECT_EQ(shown(), "Show recently played 0 Show recently added 0 " + rest);
    player.library.enabled = false;
    EXPECT_EQ(shown(), "Show recently played 1 Show recently added 1 " + rest);

    ostrevan::service_uncounted_t<support::recorded_searches> second;
    player.offer(second.class_guid, second);
    EXPECT_EQ(shown(), rest) << "two search windows";
    player.withdraw(second.class_guid);
    EXPECT_EQ(shown(), rest) << "no search window";
    for (const bool on : {false, true}) {
        menu.execute(2);
        EXPECT_EQ(quorvel::monitoring_enabled.get(), on);
        EXPECT_EQ(shown() == rest, on);
    }
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

}  // namespace
