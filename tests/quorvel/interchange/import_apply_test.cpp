#include "quorvel/interchange/import_apply.h"

#include "tests/quorvel/interchange/import_file.h"

namespace {

using quorvel::t_playback_stats;

class import_apply : public support::import_file {
protected:
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
};

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

    EXPECT_EQ(import(by_path(R"(<a Path="/m/known.flac" Count="7" Rating="5"/>
                                <b Path="/m/one.cue" Count="1"><c/></b> <b Subsong="2" Path="/m/one.cue" Count="2"/>
                                <b Path="/m/one.cue" Subsong="3" Count="3"/> <b Path="/m/missing" Count="4"/>
                                <b Path="/m/missing" Count="4"/> <b Path="" Count="5"/> <b Count="6"/>
                                <b Path="/m/unselected" Other="1"/> <b Path="/m/x&amp;y" Subsong="" Count="8"/>
                                <b Path="/m/x&amp;y" Subsong="-1" Count="9"/>)")),
              messages{"Invalid parameters"});
    EXPECT_EQ(stored(known), (t_playback_stats{.play_count = 7, .rating = 234}));
    EXPECT_EQ(plays_in_file({"/m/one.cue", 0}), 1U);
    EXPECT_EQ(plays_in_file({"/m/one.cue", 2}), 2U);
    EXPECT_EQ(plays_in_file({"/m/x&y", 0}), 8U);
    EXPECT_EQ(player.decoders.opened,
              (std::vector<std::string>{"/m/one.cue", "/m/one.cue", "/m/one.cue", "/m/missing", "/m/x&y"}));
    EXPECT_EQ(player.index.keys(quorvel::statistics_index_guid).size(), 4U);
}

TEST_F(import_apply, lets_the_last_item_of_a_key_win_field_by_field) {
    const auto info = support::make_info({{"artist", "a"}, {"title", "same"}});
    player.decoders.files = {{{"/m/1", 0}, info}, {{"/m/2", 0}, info}};
    const auto file = by_path(R"(<a Path="/m/2" Count="9" Rating="0"/><a Path="/m/1" Count="4" Added="5"/>)");
    EXPECT_EQ(import(file), messages{});
    const auto key = quorvel::KeyOf(info, {"/m/1", 0}).value();
    EXPECT_EQ(quorvel::PCDB::GetByKey(key), (t_playback_stats{.play_count = 4, .added = 5, .rating = 21}));
    EXPECT_EQ(player.index.refreshes, (std::vector<std::vector<std::uint64_t>>{{key}}));
}

}  // namespace
