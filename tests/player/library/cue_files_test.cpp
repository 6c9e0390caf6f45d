#include "player/library/cue_files.h"

#include "tests/player/library/library_fixture.h"

namespace {

using namespace library_test;

std::string sheet_of(const std::string& file, const std::string& head = "TITLE Disc\nPERFORMER Band\n") {
    return head + "FILE \"" + file + "\" WAVE\nTRACK 01 AUDIO\nTITLE One\nINDEX 01 00:00:00\n" +
           "TRACK 02 AUDIO\nTITLE Two\nPERFORMER Guest\nINDEX 01 01:00:00\n";
}

class cue_files : public library_files_test {};

TEST_F(cue_files, the_sheet_is_listed_in_place_of_its_audio) {
    put("a.flac", "title=Whole\nartist=Tagger\nalbum=Wrong\ndate=1980\nlength=100\ncodec=FLAC\nplay_count=9\n");
    put("a.cue", sheet_of("a.flac"));
    add_music();
    EXPECT_EQ(listing(), "a.cue|1:One\na.cue|2:Two\n");

    const auto info = library_->items()[1]->info();
    const std::pair<std::string_view, std::string_view> fields[] = {
        {"artist", "Guest"}, {"album artist", "Band"}, {"album", "Disc"}, {"date", "1980"}, {"tracknumber", "2"}};
    for (const auto& [name, value] : fields) {
        ASSERT_TRUE(info->info().meta_exists(name)) << name;
        EXPECT_EQ(info->info().meta_value(info->info().meta_find(name), 0), value);
    }
    EXPECT_EQ(info->info().length(), 40);
    EXPECT_EQ(info->info().codec(), "FLAC");
    // Statistics of the whole file are not those of each track.
    EXPECT_FALSE(info->info().meta_exists("play_count"));
}

TEST_F(cue_files, follow_their_audio_and_give_it_back) {
    const auto audio = put("a.flac", "title=Whole\nlength=100\n");
    add_music();
    put("a.cue", sheet_of("a.flac"));
    auto summary = rescan();
    EXPECT_EQ(listing(), "a.cue|1:One\na.cue|2:Two\n");
    EXPECT_EQ(summary.tracks_removed, 1U);
    EXPECT_EQ(summary.tracks_unchanged, 0U);

    reads_ = 0;
    summary = rescan();
    EXPECT_EQ(reads_, 0);
    EXPECT_EQ(summary.tracks_unchanged, 2U);

    put("a.flac", "title=Whole\nlength=200\n");
    rescan();
    EXPECT_EQ(library_->items()[1]->info()->info().length(), 140);
    // A second sheet for the same audio is too late, until the first is gone.
    put("b.cue", sheet_of("a.flac"));
    rescan();
    EXPECT_EQ(listing(), "a.cue|1:One\na.cue|2:Two\n");
    fs::remove(music_ / "a.cue");
    rescan();
    rescan();
    EXPECT_EQ(listing(), "b.cue|1:One\nb.cue|2:Two\n");
    // A sheet that fails keeps its tracks and its audio.
    put("b.cue", "TRACK");
    EXPECT_EQ(rescan().problems.size(), 1U);
    EXPECT_EQ(listing(), "b.cue|1:One\nb.cue|2:Two\n");
    fs::remove(music_ / "b.cue");
    rescan();
    EXPECT_EQ(listing(), "a.flac:Whole\n");
}

TEST_F(cue_files, a_sheet_inside_the_file_makes_subsongs_of_it) {
    std::string sheet = sheet_of("CDImage.wav");
    std::ranges::replace(sheet, '\n', ';');
    const auto path = put("a.flac", "title=Whole\nlength=100\ncuesheet=" + sheet + "\n").string();
    put("b.flac", "title=Plain\ncuesheet=nonsense\n");
    add_music();
    EXPECT_EQ(listing(), "a.flac|1:One\na.flac|2:Two\nb.flac:Plain\n");
    for (const auto& [subsong, start, end] : {std::tuple(1U, 0, std::optional(60.0)), {2U, 60, std::nullopt}}) {
        const auto part = resolve_playable(path, subsong, reader_);
        EXPECT_EQ(part.path, path);
        EXPECT_EQ(part.start, start);
        EXPECT_EQ(part.end, end);
    }
    EXPECT_THROW(static_cast<void>(resolve_playable(path, 3, reader_)), cue_error);
}

TEST_F(cue_files, find_audio_that_was_converted_or_renamed) {
    const auto outside = put("../outside.mp3", "title=Not of this folder\n").string();
    for (const auto* name : {"Track.FLAC", "other.mp3", "sheet.opus", "text.txt", "sub/deep.flac"})
        put(name, "length=100\n");
    const std::pair<std::string, const char*> cases[] = {
        {"Track.FLAC", "Track.FLAC"}, {"track.flac", "Track.FLAC"},         {"Track.wav", "Track.FLAC"},
        {"OTHER.wav", "other.mp3"},   {"C:\\rips\\other.wav", "other.mp3"}, {"sub\\deep.flac", "sub/deep.flac"},
        {"gone.wav", "sheet.opus"},   {"text.txt", "sheet.opus"},           {"../outside.mp3", "sheet.opus"},
        {outside, "sheet.opus"},      {"sub/../other.mp3", "other.mp3"}};
    for (const auto& [named, found] : cases) {
        const auto cue = put("sheet.cue", sheet_of(named)).string();
        const auto first = resolve_playable(cue, 1, reader_);
        EXPECT_EQ(first.path, music_ / found) << named;
        EXPECT_EQ(first.end, 60.0);
    }
    fs::remove(music_ / "sheet.opus");
    const auto cue = put("sheet.cue", sheet_of("gone.wav")).string();
    EXPECT_THROW(static_cast<void>(resolve_playable(cue, 1, reader_)), cue_error);
}

TEST_F(cue_files, copy_no_long_text_into_each_of_their_tracks) {
    const std::string longest(longest_cue_value, 'x'), longer = longest + 'x';
    put("a.flac", "comment=" + longer + "\nlabel=" + longest + "\ngenre=" + longest + "\ngenre=x\nlyrics=Words\n");
    // Naming the file for each track does not make it a file with one track.
    put("a.cue", "TITLE " + longer + "\nPERFORMER " + longest + "\nFILE a.flac WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n" +
                     "FILE A.wav WAVE\nTRACK 02 AUDIO\nTITLE " + longer + "\nTITLE B\nTITLE Two\nINDEX 01 00:00:00\n");
    add_music();
    EXPECT_EQ(listing(), "a.cue|1\na.cue|2:Two\n");
    const auto& info = library_->items()[1]->info()->info();
    const std::pair<const char*, bool> fields[] = {{"comment", false}, {"label", true},  {"genre", false},
                                                   {"lyrics", false},  {"album", false}, {"artist", true}};
    for (const auto& [name, is_there] : fields) EXPECT_EQ(info.meta_exists(name), is_there) << name;
}

}  // namespace
