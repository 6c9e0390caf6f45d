#include "tests/quorvel/interchange/import_file.h"

namespace {

class import_command : public support::import_file {
protected:
    void run(const char* answer) {
        player.file_dialog.answer = answer;
        quorvel::pcdb_export::importStatistics();
    }
};

TEST_F(import_command, asks_for_a_file_and_then_for_fields) {
    player.file_dialog.answer = std::nullopt;
    quorvel::pcdb_export::importStatistics();
    EXPECT_FALSE(player.dialogs.is_open());
    EXPECT_EQ(player.file_dialog.texts, std::vector<std::string>{"open Import Playback Statistics XML files|*.xml xml"});
    EXPECT_EQ(player.file_dialog.queries[0].parent, player.main_window());

    player.local_files.files["/s.xml"] = under_active(entry(5, R"(Count="1")"));
    run("/s.xml");
    EXPECT_EQ(player.dialogs.picture().size(), 8U);
    EXPECT_EQ(player.dialogs.picture()[0], "1002 -- Fields to import");
    run("/s.xml");
    EXPECT_EQ(player.open_dialogs.pokes, 1U);
    EXPECT_EQ(player.file_dialog.queries.size(), 2U) << "a second dialog asks nothing";

    for (const int box : {1005, 1006, 1007, 1008, 1009}) player.dialogs.set_checked(box, false);
    player.dialogs.press(ostrevan::dialog_ok);
    EXPECT_TRUE(player.dialogs.is_open());
    EXPECT_EQ(player.beeps.count, 1U);
    player.dialogs.set_checked(1005, true);
    player.dialogs.press(ostrevan::dialog_cancel);
    EXPECT_FALSE(player.dialogs.is_open());
    EXPECT_EQ(quorvel::PCDB::GetByKey(5).play_count, 0U);
}

TEST_F(import_command, opens_no_dialog_for_a_file_that_cannot_be_read) {
    run("/missing.xml");
    run("gopher://host/s.xml");
    player.local_files.files["/s.xml"] = "x";
    player.local_files.knows_sizes = false;
    run("/s.xml");
    EXPECT_FALSE(player.dialogs.is_open());
    EXPECT_EQ(take_messages(), (messages{"/missing.xml not found", "gopher://host/s.xml: nothing here opens such paths",
                                         "/s.xml: its length is not known"}));
}

}  // namespace
