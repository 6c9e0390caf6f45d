#include "tests/player/library/library_fixture.h"

namespace {

using namespace library_test;

using contents = std::vector<std::pair<std::string, std::string>>;

class moved_files_test : public library_files_test {
protected:
    std::string name_of(const ostrevan::playable_location& location) const {
        const auto name = fs::path(location.path).lexically_relative(music_).string();
        return location.subsong == 0 ? name : name + "|" + std::to_string(location.subsong);
    }
    using locations = std::vector<ostrevan::playable_location>;
    std::string moves_between(const locations& before, const locations& after) const {
        std::string text;
        for (std::size_t i = 0; i < before.size(); ++i)
            if (before[i] != after[i]) text += (text.empty() ? "" : " ") + name_of(before[i]) + ">" + name_of(after[i]);
        return text;
    }
    static std::string moves_in(const std::string& edits) { return edits.starts_with('=') ? "" : edits; }
    /// "from>to" for a move, "=path" for an edit in place.
    std::string edits_in(const std::vector<track_edit>& edits) const {
        std::vector<std::string> found;
        for (const auto& [track, before, after, from] : edits)
            found.push_back((from ? name_of(*from) + ">" : "=") + name_of(track->location()));
        std::ranges::sort(found);
        std::string text;
        for (const auto& each : found) text += (text.empty() ? "" : " ") + each;
        return text;
    }
};

TEST_F(moved_files_test, are_known_again_by_their_sound_unless_two_fit) {
    const std::string one = "title=One\nlength=10\nsound=7\n", uno = "title=Uno\nlength=10\nsound=7\n";
    const std::string plain = "length=10\nsound=7\n", sheet = "FILE a.flac WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n";
    const struct {
        contents before, after;
        std::string edits;
        std::size_t unclear = 0;
    } cases[] = {
        {{{"a/1.mp3", one}}, {{"b/uno.mp3", uno}}, "a/1.mp3>b/uno.mp3"},
        {{{"1.mp3", plain}}, {{"2.mp3", plain}}, "1.mp3>2.mp3"},
        {{{"1.mp3", "title=One\n"}}, {{"2.mp3", "title=Uno\n"}}, ""},
        {{{"1.mp3", one}}, {{"2.mp3", uno + "length=11\n"}}, ""},
        {{{"1.mp3", one}}, {{"1.mp3", one}, {"2.mp3", uno}}, ""},
        {{{"1.mp3", one}, {"3.mp3", uno}}, {{"3.mp3", uno}}, ""},
        {{{"1.mp3", one}}, {{"2.mp3", uno}, {"3.mp3", uno}}, "", 1},
        {{{"1.mp3", one}, {"2.mp3", uno}}, {{"3.mp3", "title=Eins\n" + plain}}, "", 1},
        // Copies are recognised by their names or tags, and are interchangeable where these are equal.
        {{{"a/1.mp3", plain}, {"a/2.mp3", plain}},
         {{"b/1.mp3", plain}, {"b/2.mp3", plain}},
         "a/1.mp3>b/1.mp3 a/2.mp3>b/2.mp3"},
        {{{"1.mp3", one}, {"2.mp3", uno}}, {{"3.mp3", one}, {"4.mp3", "title=Eins\n" + plain}}, "1.mp3>3.mp3 2.mp3>4.mp3"},
        {{{"a/1.mp3", one}, {"a/2.mp3", one}}, {{"b/3.mp3", one}, {"b/4.mp3", one}}, ""},
        {{{"a/1.mp3", plain}, {"a/2.mp3", plain}}, {{"b/3.mp3", plain}, {"b/4.mp3", plain}}, "", 1},
        // The first of an album was deleted, and the others have new numbers.
        {{{"1.mp3", one}, {"2.mp3", "title=Two\nsound=8\nlength=10\n"}, {"3.mp3", "title=Three\nsound=9\nlength=10\n"}},
         {{"1.mp3", "title=2\nsound=8\nlength=10\n"}, {"2.mp3", "title=3\nsound=9\nlength=10\n"}},
         "2.mp3>1.mp3 3.mp3>2.mp3"},
        {{{"1.mp3", one}}, {{"1.mp3", "title=Coded anew\nlength=10\nsound=8\n"}}, "=1.mp3"},
        {{{"a.flac", plain}, {"a.cue", sheet}}, {{"a.flac", plain}, {"b.cue", "TITLE New\n" + sheet}}, "a.cue|1>b.cue|1"},
        {{{"a.flac", plain}}, {{"a.flac", plain}, {"b.cue", sheet}}, ""},
        // A sheet without a mark of its audio is not recognised, and an older copy is not a new file.
        {{{"a.flac", ""}, {"a.cue", sheet}}, {{"a.flac", ""}, {"b.cue", sheet}}, ""},
        {{{"1.mp3", one}, {"3.mp3", one}}, {{"3.mp3", uno}}, "=3.mp3"}};
    for (const auto& each : cases) {
        SCOPED_TRACE(std::to_string(&each - cases));
        SetUp();
        for (const auto& [path, lines] : each.before) put(path, lines);
        put("other.mp3", "title=Stays\n");
        add_music();
        std::vector<ostrevan::playable_location> entries;
        std::vector<listed_entry> queue;
        for (const auto& track : library_->items()) queue.push_back({entries.emplace_back(track->location()), {}});
        library_->playlists().create("List", entries);
        library_->queue().save(queue, {}, {});
        for (const auto& [path, lines] : each.before) fs::remove(music_ / path);
        for (const auto& [path, lines] : each.after) put(path, lines);
        const auto summary = rescan();
        EXPECT_EQ(edits_in(changes_.edited), each.edits);
        EXPECT_EQ(summary.unclear.size(), each.unclear);
        EXPECT_EQ(edits_in(reopen().unfinished_edits()()), each.edits);
        EXPECT_EQ(moves_between(entries, *library_->playlists().entries("List")), moves_in(each.edits));
        EXPECT_EQ(moves_between(entries, library_->queue().load()->entries), moves_in(each.edits));
        rescan();
        EXPECT_TRUE(changes_.empty());
    }
}

TEST_F(moved_files_test, are_found_in_a_folder_added_before_and_by_the_scan_after_one_that_was_stopped) {
    put("1.mp3", "title=One\nsound=7\n");
    put("2.mp3", "title=Two\nsound=8\n");
    add_music();
    put("../new/uno.mp3", "title=Uno\nsound=7\n");
    library_->add_folders(std::vector{(folder_ / "new").string()});
    fs::remove(music_ / "1.mp3");
    rescan();
    EXPECT_EQ(edits_in(changes_.edited), "1.mp3>../new/uno.mp3");

    fs::rename(music_ / "2.mp3", music_ / "due.mp3");
    std::atomic<bool> stop = false;
    reader_ = [&](const std::string& path) {
        stop = true;
        return read_lines(path);
    };
    scan_options options;
    options.stop = &stop;
    const auto stopped = reopen().rescan(options);
    EXPECT_TRUE(stopped.is_stopped);
    EXPECT_EQ(stopped.tracks_removed, 0U);
    reopen();
    rescan();
    EXPECT_EQ(edits_in(changes_.edited), "2.mp3>due.mp3");

    put("../copy/3.mp3", "title=Drei\nsound=8\n");
    library_->add_folders(std::vector{(folder_ / "copy").string()});
    library_->remove_folders(std::vector{music_.string()});
    EXPECT_EQ(edits_in(changes_.edited), "due.mp3>../copy/3.mp3");
}

TEST_F(moved_files_test, are_found_in_a_library_of_an_older_version_after_one_scan) {
    put("1.mp3", "title=One\nsound=7\n");
    put("gone.mp3", "title=Gone\n");
    add_music();
    change_database(
        "ALTER TABLE folders DROP COLUMN scanned; ALTER TABLE files DROP COLUMN device; ALTER TABLE files DROP COLUMN sound;"
        "ALTER TABLE files DROP COLUMN arrived; ALTER TABLE edits DROP COLUMN path_before; DROP TABLE ignored;"
        "DROP TABLE queue; DROP TABLE queue_entries;"
        "UPDATE tracks SET info=CASE (SELECT CAST(path AS TEXT) LIKE '%1.mp3' FROM files WHERE id=file)"
        " WHEN 1 THEN x'01000000000000000000000000057469746C6501034F6E65' ELSE x'01FF' END; PRAGMA user_version=2");
    reads_ = 0;
    reopen();
    EXPECT_EQ(listing(), "1.mp3:One\ngone.mp3\n") << "tags are converted, and damaged ones forgotten";
    fs::remove(music_ / "gone.mp3");
    EXPECT_EQ(rescan().tracks_removed, 1U);
    EXPECT_EQ(rescan().tracks_unchanged, 1U);
    EXPECT_TRUE(fs::exists(folder_ / "backup")) << "the older form was not put aside";
    EXPECT_EQ(reads_, 1);
    fs::rename(music_ / "1.mp3", music_ / "2.mp3");
    rescan();
    EXPECT_EQ(edits_in(changes_.edited), "1.mp3>2.mp3");
}

}  // namespace
