#include "player/library/media_library.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <thread>

#include "tests/player/library/library_fixture.h"

namespace {

using namespace library_test;

class media_library_test : public library_files_test {};

TEST_F(media_library_test, reads_only_what_is_new_or_has_changed_and_remembers_it) {
    put("b/2.MP3", "title=Two\n");
    put("a/1.flac", "title=One\n");
    put("a/notes.txt", "nothing");
    auto summary = add_music();
    EXPECT_EQ(summary.tracks_added, 2U);
    EXPECT_EQ(changes_.added.size(), 2U);
    EXPECT_EQ(reopen().items().size(), 2U);
    EXPECT_EQ(listing(), "a/1.flac:One\nb/2.MP3:Two\n");
    put("a/1.flac", "title=Uno\n");
    put("c.ogg", "title=Three\n");
    fs::remove(music_ / "b/2.MP3");
    reads_ = 0;
    summary = rescan();
    EXPECT_EQ(reads_, 2);
    EXPECT_EQ(listing(), "a/1.flac:Uno\nc.ogg:Three\n");
    EXPECT_EQ(std::tuple(summary.tracks_added, summary.tracks_updated, summary.tracks_unchanged, summary.tracks_removed),
              std::tuple(1U, 1U, 0U, 1U));
    EXPECT_EQ(reopen().items().size(), 2U);
    reads_ = 0;
    EXPECT_EQ(rescan().tracks_unchanged, 2U);
    EXPECT_EQ(reads_, 0);
    EXPECT_TRUE(changes_.empty());
}

TEST_F(media_library_test, tells_a_retag_from_another_recording) {
    put("1.mp3", "title=One\nlength=10\ncodec=MP3\n");
    put("2.mp3", "title=Two\nlength=10\ncodec=MP3\n");
    add_music();
    put("1.mp3", "title=Uno\nlength=10.02\ncodec=MP3\n");
    put("2.mp3", "title=Due\nlength=11\ncodec=MP3\n");
    rescan();
    EXPECT_EQ(changes_.modified.size(), 2U);
    ASSERT_EQ(changes_.edited.size(), 1U);
    EXPECT_EQ(changes_.edited[0].before->info().meta_value(0, 0), "One");
    EXPECT_EQ(changes_.edited[0].after->info().meta_value(0, 0), "Uno");
}

TEST_F(media_library_test, keeps_edits_for_those_who_were_killed_before_they_had_followed_them) {
    put("1.mp3", "title=One\n");
    put("2.mp3", "title=Two\n");
    add_music();
    put("1.mp3", "title=Uno\n");
    put("2.mp3", "title=Two\n");
    rescan();
    put("1.mp3", "title=Eins\n");
    library_->refresh_tracks(library_->items(), refresh_mode::always);
    const auto edits = reopen().unfinished_edits()();
    ASSERT_EQ(edits.size(), 2U);
    for (const auto& [edit, before] : {std::pair(edits[0], "One"), std::pair(edits[1], "Uno")}) {
        EXPECT_EQ(edit.before->info().meta_value(0, 0), before);
        EXPECT_EQ(edit.after->info().meta_value(0, 0), "Eins");
    }
    library_->forget_edits();
    EXPECT_TRUE(reopen().unfinished_edits()().empty());
}

TEST_F(media_library_test, follows_links_without_loops_and_passes_over_what_is_no_music) {
    put("real/1.mp3", "title=One\n");
    put(".hidden/2.mp3", "title=No\n");
    put(".3.mp3", "title=No\n");
    fs::create_directory(folder_ / "elsewhere");
    std::ofstream(folder_ / "elsewhere/4.mp3") << "title=Four\n";
    fs::create_directory_symlink(music_, music_ / "real/up");
    fs::create_directory_symlink(music_ / "real", music_ / "alias");
    fs::create_directory_symlink(folder_ / "elsewhere", music_ / "y");
    fs::create_directory_symlink(folder_ / "elsewhere", music_ / "x");
    fs::create_directory_symlink(music_ / "x", folder_ / "elsewhere/back");
    fs::create_symlink(folder_ / "elsewhere/4.mp3", music_ / "five.mp3");
    fs::create_symlink("self", music_ / "self");
    fs::create_symlink(folder_ / "nowhere", music_ / "dead.mp3");
    ASSERT_EQ(mkfifo((music_ / "pipe.mp3").c_str(), 0600), 0);
    const std::string odd = "odd\xFF\xFE.mp3";
    put(odd, "title=Odd\n");
    add_music();
    const auto expected = "five.mp3:Four\n" + odd + ":Odd\nreal/1.mp3:One\nx/4.mp3:Four\n";
    EXPECT_EQ(listing(), expected);
    reopen();
    EXPECT_EQ(rescan().tracks_unchanged, 4U);
    EXPECT_EQ(listing(), expected);
}

TEST_F(media_library_test, keeps_the_tracks_of_what_is_not_there) {
    put("album/1.mp3", "title=One\n");
    fs::create_directory(folder_ / "disk");
    std::ofstream(folder_ / "disk/2.mp3") << "title=Two\n";
    fs::create_directory_symlink(folder_ / "disk", music_ / "link");
    add_music();
    const auto expected = listing();

    struct absence_case {
        std::string place;
        std::size_t kept;
        std::function<void()> begin, end;
        std::function<void(const scan_progress&)> during = {};
    };
    const auto away = folder_ / "away";
    const auto move = [](fs::path from, fs::path to) { return [=] { fs::rename(from, to); }; };
    const auto allow = [this](fs::perms album) { return [=, this] { fs::permissions(music_ / "album", album); }; };
    const auto unplug = [&] {
        fs::rename(music_, away);
        fs::create_directory(music_);
        fs::create_directory(music_ / ".Trash");
    };
    const auto plug_in = [&] {
        fs::remove_all(music_);
        fs::rename(away, music_);
    };
    int told = 0;
    const absence_case cases[] = {
        {music_, 2, move(music_, away), move(away, music_)},
        {music_, 2, unplug, plug_in},
        {music_, 2, [] {}, [] {},
         [&](const scan_progress&) {
             if (++told <= 2) told == 1 ? unplug() : plug_in();
         }},
        {music_ / "link", 1, move(folder_ / "disk", away), move(away, folder_ / "disk")},
        {music_ / "album", 1, allow(fs::perms::none), allow(fs::perms::all)},
        // The names are readable, but not the files.
        {music_ / "album", 1, allow(fs::perms::owner_read | fs::perms::others_read), allow(fs::perms::all)}};
    fs::permissions(folder_, fs::perms::all);
    for (const auto& each : cases) {
        each.begin();
        const bool is_root = geteuid() == 0;  // root can read everything
        ASSERT_EQ(is_root ? seteuid(65534) : 0, 0);
        changes_ = {};
        const auto summary = library_->rescan({.on_progress = each.during});
        ASSERT_EQ(is_root ? seteuid(0) : 0, 0);
        ASSERT_EQ(summary.absent.size(), 1U) << &each - cases;
        EXPECT_EQ(summary.absent[0].path, each.place);
        EXPECT_EQ(summary.absent[0].tracks_kept, each.kept);
        EXPECT_NE(describe(summary.absent[0]).find("kept"), std::string::npos);
        EXPECT_TRUE(changes_.empty());
        each.end();
        EXPECT_EQ(listing(), expected);
        EXPECT_TRUE(rescan().absent.empty());
    }
    fs::remove_all(music_ / "album");
    EXPECT_EQ(rescan().tracks_removed, 1U);
}

TEST_F(media_library_test, keeps_the_tracks_of_a_disk_below_a_folder_that_is_away) {
    put("1.mp3", "title=One\n");
    put("2.mp3", "title=Two\n");
    std::string disk = "/dev/shm/diskXXXXXX";  // another device than that of the music, or nothing is tested
    ASSERT_NE(mkdtemp(disk.data()), nullptr);
    std::ofstream(disk + "/3.mp3") << "title=Three\n";
    fs::create_directory_symlink(disk, music_ / "usb");
    add_music();
    fs::remove(music_ / "usb");
    fs::create_directory(music_ / "usb");
    for (const auto* next_start : {"SELECT 1", "UPDATE files SET device=device+1"}) {
        change_database(next_start);
        reopen();
        fs::remove(music_ / "2.mp3");
        const auto summary = rescan();
        EXPECT_EQ(changes_.removed.size(), 1U);
        ASSERT_EQ(summary.absent.size(), 1U);
        EXPECT_EQ(summary.absent[0].path, music_ / "usb");
        EXPECT_EQ(summary.absent[0].tracks_kept, 1U);
        EXPECT_EQ(listing(), "1.mp3:One\nusb/3.mp3:Three\n");
        put("2.mp3", "title=Two\n");
        rescan();
    }
    fs::remove_all(disk);
}

TEST_F(media_library_test, reports_files_that_fail_and_goes_on) {
    put("1.mp3", "title=One\n");
    put("2.mp3", "garbage");
    put("3.mp3", "title=Three\n");
    reader_ = [](const std::string& path) {
        if (path.ends_with("4.mp3")) throw std::bad_alloc();
        return read_lines(path);
    };
    put("4.mp3", "claims to be larger than any memory");
    auto summary = add_music();
    fs::remove(music_ / "4.mp3");
    ASSERT_EQ(summary.problems.size(), 2U);
    EXPECT_NE(summary.problems[1].reason.find("memory"), std::string::npos);
    EXPECT_EQ(summary.problems[0].path, music_ / "2.mp3");
    EXPECT_EQ(summary.problems[0].reason, "the file is damaged");
    put("1.mp3", "garbage, but known");
    EXPECT_EQ(rescan().problems.size(), 2U);
    EXPECT_EQ(listing(), "1.mp3:One\n3.mp3:Three\n");
    put("1.mp3", "title=Uno\n");
    EXPECT_EQ(rescan().problems.size(), 1U);
    EXPECT_EQ(listing(), "1.mp3:Uno\n3.mp3:Three\n");
}

TEST_F(media_library_test, goes_on_after_a_kill) {
    for (int i = 0; i < 3000; ++i) put(std::to_string(i) + ".mp3", "title=T\n");
    // A process that dies with some changes saved and some not.
    const pid_t child = fork();
    if (child == 0) {
        reader_ = [&](const std::string& path) {
            if (reads_ == 2000) {
                library_store store((folder_ / "library.sqlite").string());
                while (store.database().query_integer("SELECT count(*) FROM files") == 0) std::this_thread::yield();
                kill(getpid(), SIGKILL);
            }
            return read_lines(path);
        };
        add_music();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_FALSE(reopen().items().empty());
    EXPECT_TRUE(rescan().problems.empty());
    EXPECT_EQ(reopen().items().size(), 3000U);
}

TEST_F(media_library_test, shows_nothing_that_could_not_be_saved) {
    put("1.mp3", "title=One\n");
    add_music();
    put("2.mp3", "title=Two\n");
    // Like a full disk: every write fails.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing{0, RLIM_INFINITY}, anything{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &nothing);
    EXPECT_THROW(rescan(), ostrevan::sqlite::error);
    setrlimit(RLIMIT_FSIZE, &anything);
    EXPECT_TRUE(changes_.empty());
    EXPECT_EQ(listing(), "1.mp3:One\n");
    EXPECT_EQ(rescan().tracks_added, 1U);
}

TEST_F(media_library_test, refuses_folders_with_the_reason_and_serves_the_others) {
    put("album/1.mp3", "title=One\n");
    put("../good/2.mp3", "title=Two\n");
    fs::create_directory(folder_ / "real");
    fs::create_directory_symlink(music_, folder_ / "alias");
    fs::create_directory_symlink(folder_ / "real", folder_ / "link");
    reopen().add_folders(std::vector{music_.string(), (folder_ / "link").string()});
    const std::pair<fs::path, const char*> cases[] = {
        {folder_ / "missing", "does not exist"},  {"", "does not exist"},
        {music_ / "album/1.mp3", "is a file"},    {music_ / "album/..", "is in the library"},
        {music_ / "album", "lies inside"},        {folder_, "holds"},
        {folder_ / "alias", "is in the library"}, {folder_ / "alias/album", "lies inside"},
        {folder_ / "real", "is in the library"},  {folder_ / "good/", "is in the library"}};
    for (const auto& [path, reason] : cases) {
        const auto good = (folder_ / "good").string();
        const auto summary = library_->add_folders(std::vector{good, path.string()});
        ASSERT_EQ(summary.refused.size(), 1U) << path;
        EXPECT_NE(summary.refused[0].reason.find(reason), std::string::npos) << summary.refused[0].reason;
        EXPECT_EQ(summary.tracks_added, 1U);
        EXPECT_EQ(listing(), "/2.mp3:Two\nalbum/1.mp3:One\n");
        EXPECT_EQ(library_->folders().size(), 3U);
        EXPECT_EQ(library_->remove_folders(std::vector{good}).tracks_removed, 1U);
    }
    EXPECT_EQ(library_->remove_folders(std::vector{(music_ / "album").string()}).refused.size(), 1U);
    EXPECT_EQ(library_->remove_folders(std::vector{music_.string() + "/./"}).tracks_removed, 1U);
    EXPECT_EQ(changes_.removed.size(), 1U);
    EXPECT_EQ(reopen().folders().size(), 1U);
    EXPECT_EQ(listing(), "");
}

TEST_F(media_library_test, rescans_one_folder_and_leaves_out_what_is_ignored) {
    put("A/1.mp3", "title=One\n");
    put("A/bad.mp3", "garbage");
    put("Alpha/2.mp3", "title=Two\n");
    put("Alpha/bad.mp3", "title=Bad\n");
    put("../other/3.mp3", "title=Three\n");
    const auto other = (folder_ / "other").string();
    reopen().add_folders(std::vector{music_.string(), other});
    const std::vector paths{(music_ / "A").string(), (music_ / "Alpha/bad.mp3").string()};
    const auto ignored = library_->ignore(std::vector{paths[0], paths[1], other, folder_.string()});
    EXPECT_EQ(ignored.refused.size(), 2U);
    EXPECT_EQ(ignored.tracks_removed, 2U);
    EXPECT_EQ(changes_.removed.size(), 2U);

    put("../other/4.mp3", "title=Four\n");
    put("Alpha/5.mp3", "title=Five\n");
    const auto summary = reopen().rescan(std::vector{(music_ / "Alpha").string(), folder_.string()});
    EXPECT_EQ(summary.refused.size(), 1U);
    EXPECT_TRUE(summary.problems.empty());
    EXPECT_EQ(listing(), "Alpha/2.mp3:Two\nAlpha/5.mp3:Five\n/3.mp3:Three\n");
    EXPECT_EQ(library_->ignored(), ignored_paths(paths.begin(), paths.end()));

    EXPECT_EQ(library_->stop_ignoring(std::vector{paths[0], other}).refused.size(), 1U);
    EXPECT_EQ(reopen().rescan().problems.size(), 1U);
    EXPECT_EQ(listing(), "A/1.mp3:One\nAlpha/2.mp3:Two\nAlpha/5.mp3:Five\n/3.mp3:Three\n/4.mp3:Four\n");
}

TEST_F(media_library_test, refreshes_single_tracks_and_stores_those_of_the_library) {
    put("1.mp3", "title=One\n");
    const auto outside = folder_ / "out.mp3";
    std::ofstream(outside) << "title=Out\n";
    add_music();
    put("1.mp3", "title=Uno\n");
    const std::vector handles{library_->items()[0], tracks_->obtain(outside.string()), tracks_->obtain("/missing.mp3")};
    EXPECT_EQ(library_->refresh_tracks(handles, refresh_mode::unknown_only).size(), 1U);
    EXPECT_EQ(changes_.modified, std::vector{handles[1]});
    library_->refresh_tracks(handles, refresh_mode::if_changed);
    EXPECT_TRUE(changes_.edited.empty());
    EXPECT_EQ(handles[1]->info()->info().meta_value(0, 0), "Out");
    EXPECT_EQ(listing(), "1.mp3:Uno\n");
    reopen();
    EXPECT_EQ(listing(), "1.mp3:Uno\n");
}

}  // namespace
