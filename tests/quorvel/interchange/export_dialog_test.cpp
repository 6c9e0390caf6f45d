#include "quorvel/interchange/export_dialog.h"
#include "tests/support/statistics_test.h"

namespace {

using quorvel::pcdb_export::open_export_dialog;

constexpr int ok = 1, cancel = 2, library_only = 1003, full_backup = 1004, times_played = 1005, rating = 1009;

/// Shows messages and asks nothing.
class plain_popups : public support::recorded_popups {
public:
    ostrevan::service_base* service_query(const nuv::guid&) noexcept override { return nullptr; }
};

class export_dialog : public support::statistics_test {
protected:
    ostrevan::metadb_handle_list tracks = support::make_tracks(2);

    export_dialog() {
        player.library.items = {tracks[0]};
        for (const auto& track : tracks) put(track, {.play_count = 3, .rating = 63});
        player.file_dialog.answer = "/out.xml";
    }
    void press_ok() {
        player.dialogs.press(ok);
        player.settle();
    }
    /// The number of records in the file written by OK.
    std::size_t records_after_ok() {
        press_ok();
        EXPECT_FALSE(player.dialogs.is_open());
        const auto& text = player.local_files.files.at("/out.xml");
        return static_cast<std::size_t>(std::ranges::count(text, '\n')) / 2;
    }
};

TEST_F(export_dialog, looks_as_the_library_and_the_selection_want) {
    const auto fields = std::to_array<std::string>({"1002 -- Fields to export", "1005 [x] Times played",
                                                    "1006 [x] First played time", "1007 [x] Last played time",
                                                    "1008 [x] Added time", "1009 [x] Rating", "1 < > OK", "2 < > Cancel"});
    open_export_dialog(tracks);
    EXPECT_TRUE(std::ranges::equal(player.dialogs.picture(), fields));
    open_export_dialog();
    EXPECT_EQ(player.open_dialogs.pokes, 1U);
    EXPECT_TRUE(std::ranges::equal(player.dialogs.picture(), fields)) << "the one that is open";
    player.dialogs.press(cancel);

    for (const bool enabled : {true, false}) {
        player.library.enabled = enabled;
        std::vector<std::string> expected{"1001 -- Export type",
                                          enabled ? "1003 (*) Statistics of current Media Library content only"
                                                  : "1003 ( ) Statistics of current Media Library content only !",
                                          enabled ? "1004 ( ) Full backup" : "1004 (*) Full backup"};
        expected.insert(expected.end(), fields.begin(), fields.end());
        open_export_dialog();
        EXPECT_EQ(player.dialogs.picture(), expected);
        player.dialogs.press(cancel);
    }
    EXPECT_TRUE(player.local_files.files.empty());
}

TEST_F(export_dialog, exports_what_is_chosen) {
    open_export_dialog();
    EXPECT_EQ(records_after_ok(), 1U) << "of the library";
    open_export_dialog();
    player.dialogs.set_checked(full_backup, true);
    player.library.items.clear();
    press_ok();
    EXPECT_EQ(std::ranges::count(player.local_files.files.at("/out.xml"), '\n'), 3) << "everything, without tracks";

    open_export_dialog(ostrevan::metadb_handle_list(tracks));
    for (int id = times_played; id < rating; ++id) player.dialogs.set_checked(id, false);
    EXPECT_EQ(records_after_ok(), 2U) << "of the selection as it was";
    const auto& text = player.local_files.files.at("/out.xml");
    EXPECT_EQ(text.find("Count="), std::string::npos);
    EXPECT_NE(text.find("Rating=\"63\""), std::string::npos);
}

TEST_F(export_dialog, stays_open_until_there_is_something_to_write_and_somewhere) {
    open_export_dialog(tracks);
    for (int id = times_played; id <= rating; ++id) player.dialogs.set_checked(id, false);
    press_ok();
    EXPECT_EQ(player.beeps.count, 1U);
    player.withdraw(player.beeps.class_guid);
    press_ok();
    EXPECT_TRUE(player.file_dialog.queries.empty());

    player.dialogs.set_checked(rating, true);
    player.file_dialog.answer.reset();
    for (const int button : {ok, ok, cancel}) player.dialogs.press(button);
    EXPECT_TRUE(player.dialogs.is_open()) << "it waits for the file";
    player.settle();
    EXPECT_EQ(player.file_dialog.queries.size(), 1U);
    EXPECT_TRUE(player.dialogs.is_open());
    EXPECT_TRUE(player.local_files.files.empty());
    EXPECT_EQ(player.file_dialog.texts.at(0), "save Export Playback Statistics XML files|*.xml xml");
    EXPECT_EQ(player.file_dialog.queries[0].parent, player.dialogs.native_window());
}

TEST_F(export_dialog, tells_of_a_failure) {
    player.local_files.room = 10;
    open_export_dialog();
    press_ok();
    EXPECT_EQ(question(), "10 Information: Playback statistics export failure: disk full");
    EXPECT_TRUE(player.local_files.files.empty()) << "half a file replaces nothing";

    ostrevan::service_uncounted_t<plain_popups> plain;
    player.offer(plain.class_guid, plain);
    player.local_files.room = static_cast<std::size_t>(-1);
    player.progress.abort = true;
    open_export_dialog(support::make_tracks(1000));
    press_ok();
    EXPECT_EQ(player.local_files.flushes, 0U);
    EXPECT_EQ(plain.messages,
              (std::vector<support::shown_message>{{"Playback statistics export failure: Interrupted", "Information", 1}}));
    EXPECT_EQ(player.progress.steps.back(), (std::pair<std::size_t, std::size_t>{256, 1000}));

    player.withdraw(plain.class_guid);
    player.local_files.room = 0;
    open_export_dialog(tracks);
    press_ok();
    EXPECT_EQ(player.console.lines.back(), "Playback statistics export failure: disk full") << "for want of messages";
}

}  // namespace
