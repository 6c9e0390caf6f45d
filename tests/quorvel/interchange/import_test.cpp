#include <cstdio>

#include "quorvel/interchange/import_command.h"
#include "quorvel/interchange/import_parse.h"
#include "quorvel/store/statistics_index.h"
#include "tests/support/statistics_test.h"

namespace {

using quorvel::t_playback_stats;

const std::string all_attributes =
    R"(Count="2" FirstPlayed="30" FirstPlayedFriendly="x" LastPlayed="40" Added="" Rating="63" RatingFriendly="y" )";
constexpr t_playback_stats before{.play_count = 10, .first_played = 3, .last_played = 4, .added = 5, .rating = 234};

/// Imports texts through the command and its dialog.
class import_test : public support::statistics_test {
protected:
    using messages = std::vector<std::string>;

    ostrevan::metadb_handle_list tracks = support::make_tracks(3);

    static std::string entry(std::uint64_t key, const std::string& attributes) {
        char id[17];
        std::snprintf(id, sizeof id, "%016llx", static_cast<unsigned long long>(key));
        return std::string("  <Entry ID=\"") + id + "\" " + attributes + "/>\n";
    }
    static std::string under(const nuv::guid& mapping, const std::string& entries) {
        return "<PlaybackStatistics Version=\"3.0\" Mapping=\"" + nuv::guid_text(mapping) + "\">\n" + entries +
               "</PlaybackStatistics>";
    }
    static std::string under_active(const std::string& entries) { return under(quorvel::active_mapping_guid, entries); }

    /// The message without its constant part.
    messages import(const std::string& text, std::initializer_list<int> unchecked = {}) {
        player.local_files.files["/s.xml"] = text;
        player.file_dialog.answer = "/s.xml";
        quorvel::pcdb_export::importStatistics();
        player.settle();
        for (const int box : unchecked) player.dialogs.set_checked(box, false);
        player.dialogs.press(ostrevan::dialog_ok);
        EXPECT_FALSE(player.dialogs.is_open());
        return take_messages();
    }
    messages take_messages() {
        const std::string_view always = "Playback statistics import failure: ";
        messages texts;
        for (const auto& message : std::exchange(player.popups.questions(), {})) {
            EXPECT_TRUE(message.text.starts_with(always) && message.title == "Information") << message.text;
            texts.push_back(message.text.substr(always.size()));
        }
        return texts;
    }
    std::string entry_of(std::size_t track, const std::string& attributes) {
        return entry(key_of(tracks[track]), attributes);
    }
    static std::uint64_t key_under(const nuv::guid& mapping, const ostrevan::metadb_handle_ptr& track) {
        return quorvel::FindMapping(mapping)->key_of(track->info()->info(), track->location());
    }
    /// A track of an album, which the older mappings tell apart by its number and not by its title.
    static support::memory_track_ptr numbered(const char* title, const char* number = "3") {
        return support::make_track(
            std::string("/album/") + title,
            {{"artist", "a"}, {"album", "b"}, {"tracknumber", number}, {"tracknumber", number}, {"title", title}});
    }
    static std::string by_path(const std::string& elements) {
        return R"(<PlaybackStatistics Version="4.0">)" + elements + "</PlaybackStatistics>";
    }
    std::uint64_t plays_in_file(const ostrevan::playable_location& location) {
        return quorvel::PCDB::GetByKey(quorvel::KeyOf(player.decoders.files.at(location), location).value()).play_count;
    }
    void run(const char* answer) {
        player.file_dialog.answer = answer;
        quorvel::pcdb_export::importStatistics();
        player.settle();
    }
};
using import_command = import_test;
using import_handlers = import_test;
using import_apply = import_test;

TEST_F(import_command, asks_for_a_file_and_then_for_fields) {
    player.file_dialog.answer = std::nullopt;
    quorvel::pcdb_export::importStatistics();
    player.settle();
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
    EXPECT_DEATH(std::thread(quorvel::pcdb_export::importStatistics).join(), "^core_api::ensure_main_thread");
    player.local_files.files["/s.xml"] = "x";
    player.local_files.knows_sizes = false;
    run("/s.xml");
    EXPECT_FALSE(player.dialogs.is_open());
    EXPECT_EQ(take_messages(), (messages{"/missing.xml not found", "gopher://host/s.xml: nothing here opens such paths",
                                         "/s.xml: its length is not known"}));
}

TEST_F(import_handlers, replaces_the_fields_that_are_wanted_and_present) {
    const struct {
        std::initializer_list<int> unchecked;
        std::string attributes;
        t_playback_stats after;
    } cases[] = {
        {{}, all_attributes, {.play_count = 2, .first_played = 30, .last_played = 40, .added = 0, .rating = 63}},
        {{1005, 1006, 1007, 1008},
         all_attributes,
         {.play_count = 10, .first_played = 3, .last_played = 4, .added = 5, .rating = 63}},
        {{1009}, all_attributes, {.play_count = 2, .first_played = 30, .last_played = 40, .added = 0, .rating = 234}},
        {{}, R"(LastPlayed="9")", {.play_count = 10, .first_played = 3, .last_played = 9, .added = 5, .rating = 234}},
        {{1006}, R"(FirstPlayed="no number" Note="")", before},
    };
    for (const auto& [unchecked, attributes, after] : cases) {
        put(tracks[0], before);
        EXPECT_EQ(import(under_active(entry_of(0, attributes)), unchecked), messages{});
        EXPECT_EQ(stored(tracks[0]), after) << attributes;
    }
}

TEST_F(import_handlers, makes_one_operation_of_a_file_and_nothing_of_its_repetition) {
    const auto file =
        under_active(entry_of(0, R"(Count="1")") + "<Entry Count=\"5\"/><entry ID=\"7\" Count=\"5\"/>" +
                     entry_of(1, R"(Count="7")") + entry_of(2, "") + entry(0, R"(Count="5")") + entry_of(0, R"(Added="2")"));
    const auto committed = player.index.committed;
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(import(file), messages{});
        EXPECT_EQ(player.index.committed - committed, 1U);
        EXPECT_EQ(std::ranges::count(player.index.events, "commit import of /s.xml"), 1);
        EXPECT_NE(player.console.lines.back().find("records read: 4,"), std::string::npos);
        EXPECT_EQ(player.index.refreshes, (std::vector<std::vector<std::uint64_t>>{{key_of(tracks[0]), key_of(tracks[1])}}));
        EXPECT_EQ(player.index.keys(quorvel::statistics_index_guid).size(), 2U);
        EXPECT_EQ(stored(tracks[0]), (t_playback_stats{.play_count = 1, .added = 2}));
    }
    EXPECT_EQ(player.progress.started.back(), "records imported");
    EXPECT_EQ(import(under_active(entry_of(0, R"(Count="4")") + entry_of(0, R"(Count="3")"))), messages{});
    EXPECT_EQ(stored(tracks[0]).play_count, 3U) << "the last entry of a key wins";
}

TEST_F(import_handlers, keeps_what_came_before_an_error) {
    const std::string good = entry_of(0, R"(Count="4" Rating="1")");
    const std::string later = entry_of(1, R"(Count="4")");
    const std::pair<std::string, const char*> cases[] = {
        {under_active(good + entry_of(1, R"(Count="18446744073709551616")") + later), "Overflow"},
        {under_active(good + entry_of(1, R"(Count="4" Rating="4294967296")") + later), "Overflow"},
        {under_active(good + R"(<Entry ID="0x1" Count="1"/>)" + later), "Invalid parameters"},
        {under_active(good + R"(<Entry ID='1'/>)" + later), "XML error"},
        {under_active(good + "<Entry>" + later), "XML error"},
        {under_active(good + later).substr(0, under_active(good).size()), "XML error"},
        {under_active(good) + "<PlaybackStatistics/>", "Unsupported format or corrupted file"},
        {under_active(good) + R"(<PlaybackStatistics Version="3.1"/>)", "Unsupported format or corrupted file"},
        {under_active(good) + R"(<PlaybackStatistics Version="3.0"/>)", "Unsupported format or corrupted file"},
        {under_active(good) + under({1, 2, 3, {}}, later), "Unsupported format or corrupted file"},
    };
    for (const auto& [file, message] : cases) {
        put(tracks[0], before);
        EXPECT_EQ(import(file), messages{message}) << file;
        EXPECT_EQ(player.console.lines.back(), "Playback statistics import: records read: 1, statistics changed: 1");
        EXPECT_EQ(stored(tracks[0]).play_count, 4U) << file;
        EXPECT_EQ(stored(tracks[1]), t_playback_stats{}) << file;
    }
}

TEST_F(import_handlers, passes_over_other_documents) {
    for (const char* text : {"", "a picture", R"(<Library Version="9"><Entry ID="1" Count="1"/></Library>)"}) {
        EXPECT_EQ(import(text), messages{});
        EXPECT_EQ(player.console.lines.back(), "Playback statistics import: records read: 0, statistics changed: 0");
    }
    EXPECT_EQ(import("<other/>" + under_active(entry(9, R"(Count="1")"))), messages{});
    EXPECT_EQ(quorvel::PCDB::GetByKey(9).play_count, 1U);
}

TEST_F(import_handlers, needs_an_index_for_paths_only) {
    quorvel::statistics_index::close();
    EXPECT_EQ(import(R"(<PlaybackStatistics Version="4.0"/>)"), messages{"No active index"});
    EXPECT_EQ(import(under_active(entry_of(0, all_attributes))), messages{});
}

TEST_F(import_handlers, says_what_an_interrupted_or_failed_import_has_changed) {
    std::string entries;
    for (std::uint64_t key = 1; key <= 300; ++key) entries += entry(key, R"(Count="1")");
    const auto records = [&] { return player.index.keys(quorvel::statistics_index_guid).size(); };
    player.progress.abort = true;
    EXPECT_EQ(import(under_active(entries)), messages{"Interrupted. No statistics have been changed"});
    EXPECT_EQ(records() + player.index.refreshes.size(), 0U);
    player.index.offer_transactions = false;
    EXPECT_EQ(import(under_active(entries)), messages{"Interrupted after 255 records were changed"});
    EXPECT_EQ(records(), 255U);
    EXPECT_EQ(player.index.refreshes.at(0).size(), 255U);
    EXPECT_EQ(import(under_active(entries)), messages{"Interrupted. No statistics have been changed"});
    player.index.offer_transactions = true;
    std::string files;
    for (int i = 0; i < 50; ++i) files += "<a Path=\"/m/" + std::to_string(i) + "\" Count=\"1\"/>";
    player.decoders.delay = std::chrono::milliseconds(10);
    EXPECT_EQ(import(by_path(files)), messages{"Interrupted. No statistics have been changed"});
    EXPECT_LT(player.decoders.opened.size(), 50U) << "between two files";
    player.decoders.delay = {};
    for (int i = 0; i < 150; ++i) files += R"(<a Path="/m/0" Count="1"/>)";
    EXPECT_EQ(import(by_path(files)), messages{"Interrupted. No statistics have been changed"});
    player.library.items = support::make_tracks(300).items();
    EXPECT_EQ(import(under(quorvel::legacy_track_mapping_guid, entry(1, R"(Count="1")"))),
              messages{"Interrupted. No statistics have been changed"});
    player.progress.abort = false;
    player.index.writes_until_failure = 44;
    EXPECT_EQ(import(under_active(entries)), messages{"index cannot be written"});
    EXPECT_EQ(records(), 299U);
}

TEST_F(import_apply, finds_the_tracks_that_had_an_older_key) {
    for (const auto& mapping : quorvel::mapping_guids().subspan(1)) {
        const auto in_library = numbered("x"), in_both = numbered("y"), in_playlist = numbered("z"),
                   other = numbered("x", "4");
        const auto in_file = numbered("w"), unread = numbered("v");
        player.decoders.files = {{in_file->location(), in_file->info()->info()}};
        in_file->forget_info();
        unread->forget_info();
        player.library.items = {in_library, in_both, other};
        player.playlists.items = {in_both, in_file, in_playlist, unread, in_playlist};
        const auto old_key = key_under(mapping, in_library);
        put(in_both, {.play_count = 50, .added = 6});

        const std::string items = "<Item Path=\"" + other->location().path + "\"></Item>";
        const auto file = under(mapping, entry(old_key, R"(Count="1" Added="9")") + entry(key_of(other), R"(Count="8")") +
                                             "<Entry ID=\"" + "1\" Count=\"1\">" + items + "</Entry>" +
                                             entry(old_key, R"(Count="3")") + entry(old_key, R"(Count="x")"));
        EXPECT_EQ(import(file), messages{"Invalid parameters"}) << "what is before the mistake counts";
        for (const auto& track : {in_library, in_playlist}) EXPECT_EQ(stored(track).play_count, 3U);
        EXPECT_EQ(stored(in_both), (t_playback_stats{.play_count = 3, .added = 6})) << "a later entry replaces an earlier";
        EXPECT_EQ(stored(other), t_playback_stats{});
        EXPECT_EQ(plays_in_file(in_file->location()), 3U);
        EXPECT_EQ(player.index.refreshes.back().size(), 4U);
        player.index.clear();
    }
}

TEST_F(import_apply, finds_tracks_by_path_and_subsong) {
    const auto known = support::make_track("/m/known.flac", {{"artist", "a"}, {"title", "k"}});
    player.metadb.tracks[known->location()] = known;
    const auto info = [](const char* title) { return support::make_info({{"artist", "a"}, {"title", title}}); };
    player.decoders.files = {{{"/m/one.cue", 0}, info("c0")}, {{"/m/one.cue", 2}, info("c2")}, {{"/m/x&y", 0}, info("x")}};

    player.library.items = {numbered("x")};
    EXPECT_EQ(import(under(quorvel::legacy_track_mapping_guid, entry(1, R"(Count="1")")) +
                     by_path(R"(<a Path="/m/known.flac" Count="9" Rating="5"/> <c Path="/m/known.flac" Count="7" Added="5"/>
                                <b Path="/m/one.cue" Count="1"><c/></b> <b Subsong="2" Path="/m/one.cue" Count="2"/>
                                <b Path="/m/one.cue" Subsong="3" Count="3"/> <b Path="/m/missing" Count="4"/>
                                <b Path="/m/missing" Count="4"/> <b Path="" Count="5"/> <b Count="6"/>
                                <b Path="/m/unselected" Other="1"/> <b Path="/m/x&amp;y" Subsong="" Count="8"/>
                                <b Path="/m/x&amp;y" Subsong="-1" Count="9"/>)")),
              messages{"Invalid parameters"});
    EXPECT_EQ(stored(known), (t_playback_stats{.play_count = 7, .added = 5, .rating = 234}));
    EXPECT_EQ(plays_in_file({"/m/one.cue", 0}), 1U);
    EXPECT_EQ(plays_in_file({"/m/one.cue", 2}), 2U);
    EXPECT_EQ(plays_in_file({"/m/x&y", 0}), 8U);
    EXPECT_EQ(player.decoders.opened,
              (std::vector<std::string>{"/m/one.cue", "/m/one.cue", "/m/one.cue", "/m/missing", "/m/x&y"}));
    EXPECT_EQ(player.index.keys(quorvel::statistics_index_guid).size(), 4U);
}

template <typename T>
std::string parsed(std::string_view text, int base = 10) {
    try {
        return std::to_string(quorvel::parse_number<T>(text, base));
    } catch (const std::exception& e) {
        return e.what();
    }
}

TEST(import_numbers, are_digits_that_fit) {
    const char* const max = "18446744073709551615";
    const struct {
        const char *text, *decimal, *hexadecimal;
    } rows[] = {
        {"", "0", "0"},
        {"18446744073709551615", max, "Overflow"},
        {"000018446744073709551615", max, "Overflow"},
        {"18446744073709551616", "Overflow", "Overflow"},
        {"99999999999999999999x", "Overflow", "Overflow"},  // before the letter
        {"1844674407370955161x6", "Invalid parameters", "Overflow"},
        {"00000000000abCDe", "Invalid parameters", "703710"},
        {"0000ffffffffffffffff", "Invalid parameters", max},
        {"12345678901234567g", "Invalid parameters", "Overflow"},
    };
    for (const auto& [text, decimal, hexadecimal] : rows) {
        EXPECT_EQ(parsed<std::uint64_t>(text), decimal) << text;
        EXPECT_EQ(parsed<std::uint64_t>(text, 16), hexadecimal) << text;
    }
    for (const char* text : {"-1", "+1", " 1", "1 ", "1.0", "0x1", "g"})
        for (const int base : {10, 16}) EXPECT_EQ(parsed<std::uint64_t>(text, base), "Invalid parameters") << text;
    EXPECT_EQ(parsed<std::uint32_t>("4294967295"), "4294967295");
    EXPECT_EQ(parsed<std::uint32_t>("4294967296"), "Overflow");
}

}  // namespace
