#include "player/watch/find_track.h"

#include "tests/player/library/library_fixture.h"

namespace ostrevan::watch {
namespace {

using find_track_test = library_test::library_files_test;

TEST_F(find_track_test, takes_the_location_whatever_its_form_and_else_tags_that_fit_one_track) {
    namespace fs = std::filesystem;
    put("b \xC3\xBC 100%25.flac", "title=B\nartist=X\nalbum=First\n");
    const auto a = put("a.flac", "title=A\nartist=X\nalbum=First\n");
    put("copy.flac", "title=a\nartist=x\nalbum=Second\n");
    put("whole.flac",
        "title=Whole\nlength=100\ncuesheet=FILE \"w\" WAVE;TRACK 01 AUDIO;TITLE \"One\";INDEX 01 00:00:00;"
        "TRACK 02 AUDIO;TITLE \"Two\";INDEX 01 00:50:00\n");
    fs::create_directory(folder_ / "bind");
    fs::create_hard_link(a, folder_ / "bind/a.flac");
    fs::create_hard_link(a, folder_ / "bind/other.flac");
    fs::create_symlink(a, folder_ / "link.flac");
    fs::create_directory_symlink(music_, folder_ / "linked");
    add_music();
    const auto music = music_.string(), folder = folder_.string();
    const struct {
        told_track told;
        const char* found;  // the title, or the reason
    } table[] = {
        {{.location = "file://" + music + "/b%20%C3%BC%20100%2525.flac"}, "B"},
        {{.location = "FILE://localhost" + music + "/b%20%c3%bc%20100%2525.flac"}, "B"},
        {{.location = "file://" + music + "/b \xC3\xBC 100%25.flac"}, "B"},
        {{.location = music + "/b \xC3\xBC 100%25.flac"}, "B"},
        {{.location = music + "/b%20%C3%BC%20100%2525.flac"}, "it is not in the library"},
        {{.location = "file://" + music + "/b%2", .title = "b", .artist = "X"}, "B"},
        {{.location = folder + "/link.flac"}, "A"},
        {{.location = folder + "/linked/a.flac"}, "A"},
        {{.location = folder + "/bind/a.flac"}, "A"},
        {{.location = folder + "/bind/other.flac"}, "it is not in the library"},
        {{.location = folder + "/bind", .title = "A", .artist = "X", .album = "SECOND"}, "a"},
        {{.location = "https://a/b", .title = "\xC3\x84", .artist = "X"},
         "it is not in the library, and no track there has its tags"},
        {{.title = "A", .artist = "X"}, "it is not in the library, and several tracks there have its tags"},
        {{.title = "B", .artist = "Y"}, "it is not in the library, and no track there has its tags"},
        {{.title = "B", .artist = "X", .album = "Second"}, "it is not in the library, and no track there has its tags"},
        {{.title = "B"}, "it is not in the library"},
        {{.location = music + "/whole.flac/track0002"}, "Two"},
        {{.location = music + "/whole.flac/track01.flac"}, "One"},
        {{.location = music + "/whole.flac", .title = "two"}, "Two"},
        {{.location = music + "/whole.flac"}, "it is not told which track of the file it is"},
        {{.location = music + "/a.flac", .title = "Another"}, "A"},
    };
    for (const auto& row : table) {
        const auto found = find_track(row.told, library_->items());
        std::string title;
        if (found.track) title = found.track->info()->info().meta_value(found.track->info()->info().meta_find("title"), 0);
        EXPECT_EQ(found.track ? title : found.reason, row.found) << row.told.location << ' ' << row.told.title;
        EXPECT_EQ(found.is_by_location, found.track && row.told.artist.empty()) << row.told.location;
    }
}

}  // namespace
}  // namespace ostrevan::watch
