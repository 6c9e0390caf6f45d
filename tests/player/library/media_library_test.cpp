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
    put("b/2.mp3", "title=Two\n");
    put("a/1.flac", "title=One\n");
    put("a/notes.txt", "nothing");
    auto summary = add_music();
    EXPECT_EQ(summary.tracks_added, 2U);
    EXPECT_EQ(changes_.added.size(), 2U);
    EXPECT_EQ(listing(), "a/1.flac:One\nb/2.mp3:Two\n");

    reopen();
    EXPECT_EQ(listing(), "a/1.flac:One\nb/2.mp3:Two\n");
    put("a/1.flac", "title=Uno\n");
    put("c.ogg", "title=Three\n");
    fs::remove(music_ / "b/2.mp3");
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
    const auto edits = reopen().unfinished_edits();
    ASSERT_EQ(edits.size(), 2U);
    for (const auto& [edit, before] : {std::pair(edits[0], "One"), std::pair(edits[1], "Uno")}) {
        EXPECT_EQ(edit.before->info().meta_value(0, 0), before);
        EXPECT_EQ(edit.after->info().meta_value(0, 0), "Eins");
    }
    library_->forget_edits();
    EXPECT_TRUE(reopen().unfinished_edits().empty());
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

    struct absence {
        std::string place;
        std::size_t kept;
        std::function<void()> begin, end;
    };
    const auto away = folder_ / "away";
    const auto move = [](fs::path from, fs::path to) { return [=] { fs::rename(from, to); }; };
    const absence cases[] = {
        {music_, 2, move(music_, away), move(away, music_)},
        {music_, 2,
         [&] {
             fs::rename(music_, away);
             fs::create_directory(music_);
             fs::create_directory(music_ / ".Trash");
         },
         [&] {
             fs::remove_all(music_);
             fs::rename(away, music_);
         }},
        {music_ / "link", 1, move(folder_ / "disk", away), move(away, folder_ / "disk")},
        {music_ / "album", 1, [&] { fs::permissions(music_ / "album", fs::perms::none); },
         [&] { fs::permissions(music_ / "album", fs::perms::owner_all); }},
    };
    for (const auto& each : cases) {
        if (&each == std::end(cases) - 1 && geteuid() == 0) continue;  // nothing is unreadable for root
        each.begin();
        const auto summary = rescan();
        ASSERT_EQ(summary.absent.size(), 1U);
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

TEST_F(media_library_test, reports_files_that_fail_and_goes_on) {
    put("1.mp3", "title=One\n");
    put("2.mp3", "garbage");
    put("3.mp3", "title=Three\n");
    auto summary = add_music();
    ASSERT_EQ(summary.problems.size(), 1U);
    EXPECT_EQ(summary.problems[0].path, music_ / "2.mp3");
    EXPECT_EQ(summary.problems[0].reason, "the file is damaged");
    put("1.mp3", "garbage, but known");
    EXPECT_EQ(rescan().problems.size(), 2U);
    EXPECT_EQ(listing(), "1.mp3:One\n3.mp3:Three\n");
    put("1.mp3", "title=Uno\n");
    EXPECT_EQ(rescan().problems.size(), 1U);
    EXPECT_EQ(listing(), "1.mp3:Uno\n3.mp3:Three\n");
}

TEST_F(media_library_test, goes_on_after_a_stop_and_after_a_kill) {
    for (int i = 0; i < 3000; ++i) put(std::to_string(i) + ".mp3", "title=T\n");
    std::atomic<bool> stop = false;
    reader_ = [&](const std::string& path) {
        if (reads_ == 100) stop = true;
        return read_lines(path);
    };
    scan_options options;
    options.stop = &stop;
    const auto stopped = reopen().add_folders(std::vector{music_.string()}, options);
    EXPECT_TRUE(stopped.is_stopped);
    EXPECT_EQ(stopped.tracks_removed, 0U);
    const auto saved = library_->items().size();
    EXPECT_GE(saved, 100U);
    EXPECT_LT(saved, 3000U);
    library_.reset();

    // A process that dies when something has been saved and something has not.
    const pid_t child = fork();
    if (child == 0) {
        reader_ = [&](const std::string& path) {
            if (reads_ == 2000) {
                while (!fs::exists(folder_ / "library.sqlite-wal") || fs::file_size(folder_ / "library.sqlite-wal") == 0)
                    std::this_thread::yield();
                kill(getpid(), SIGKILL);
            }
            return read_lines(path);
        };
        reopen().rescan();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    reader_ = read_lines;
    reopen();
    EXPECT_GE(library_->items().size(), saved);
    EXPECT_TRUE(rescan().problems.empty());
    EXPECT_EQ(reopen().items().size(), 3000U);
}

TEST_F(media_library_test, shows_nothing_that_could_not_be_saved) {
    put("1.mp3", "title=One\n");
    add_music();
    put("2.mp3", "title=Two\n");
    // What a full disk does: every write fails.
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit nothing{0, RLIM_INFINITY}, anything{RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &nothing);
    EXPECT_THROW(rescan(), ostrevan::sqlite::error);
    setrlimit(RLIMIT_FSIZE, &anything);
    EXPECT_TRUE(changes_.empty());
    EXPECT_EQ(listing(), "1.mp3:One\n");
    EXPECT_EQ(rescan().tracks_added, 1U);
}

TEST_F(media_library_test, refuses_folders_with_the_reason_and_adds_none_of_them) {
    put("album/1.mp3", "title=One\n");
    fs::create_directory(folder_ / "good");
    fs::create_directory_symlink(music_, folder_ / "alias");
    add_music();
    const std::pair<fs::path, const char*> cases[] = {
        {folder_ / "missing", "does not exist"},
        {music_ / "album/1.mp3", "is a file"},
        {music_ / "album/..", "is in the library"},
        {music_ / "album", "lies inside"},
        {folder_, "holds"},
        {folder_ / "alias", "is in the library"},
        {folder_ / "alias/album", "lies inside"},
    };
    for (const auto& [path, reason] : cases) {
        try {
            library_->add_folders(std::vector{(folder_ / "good").string(), path.string()});
            ADD_FAILURE() << path;
        } catch (const library_error& refused) {
            EXPECT_NE(std::string(refused.what()).find(reason), std::string::npos) << refused.what();
        }
        EXPECT_EQ(library_->folders().size(), 1U);
    }
    EXPECT_THROW(library_->remove_folders(std::vector{(music_ / "album").string()}), library_error);
    EXPECT_EQ(library_->remove_folders(std::vector{music_.string() + "/./"}), 1U);
    EXPECT_EQ(changes_.removed.size(), 1U);
    EXPECT_FALSE(reopen().is_enabled());
    EXPECT_EQ(listing(), "");
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

TEST_F(media_library_test, keeps_playlists_in_order_with_repetitions) {
    add_music();
    const std::vector<ostrevan::playable_location> entries{{"/b\xFF", 2}, {"/a", 0}, {"/b\xFF", 2}};
    EXPECT_TRUE(library_->playlists().create("Mix", entries));
    EXPECT_FALSE(library_->playlists().create("Mix", {}));
    auto& lists = reopen().playlists();
    EXPECT_EQ(lists.entries("Mix"), entries);
    EXPECT_EQ(lists.names(), std::vector<std::string>{"Mix"});
    EXPECT_TRUE(lists.remove("Mix"));
    EXPECT_FALSE(lists.remove("Mix"));
    EXPECT_FALSE(lists.entries("Mix"));
}

}  // namespace
