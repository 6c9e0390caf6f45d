#include "player/tags/rewrite.h"

#include <fcntl.h>

#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>

#include <cerrno>
#include <functional>
#include <thread>

#include "player/tags/copy_name.h"
#include "player/tags/reader.h"
#include "player/tags/working_copy.h"
#include "tests/player/tags/audio_files.h"

namespace ostrevan::tags {
namespace {

using rewrite = audio_files;

constexpr rewrite_step all_steps[] = {rewrite_step::opened,         rewrite_step::copy_made, rewrite_step::copied,
                                      rewrite_step::attributes_set, rewrite_step::edited,    rewrite_step::verified,
                                      rewrite_step::synced,         rewrite_step::checked,   rewrite_step::renamed,
                                      rewrite_step::folder_synced};

constexpr std::string_view formats[] = {"id3v24.mp3", "flac.flac", "vorbis.ogg", "aac.m4a",
                                        "wma.wma",    "pcm.wav",   "wavpack.wv"};

/// Runs a part of a test in a process of its own and answers its exit status.
int status_of_child(const std::function<void()>& part) {
    const pid_t child = fork();
    if (child == 0) {
        part();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

struct stat about(const fs::path& path) {
    struct stat result {};
    EXPECT_EQ(stat(path.c_str(), &result), 0) << path;
    return result;
}

TEST_F(rewrite, killed_at_any_step_leaves_the_old_file_or_the_new_one) {
    for (const auto name : formats) {
        const auto path = copy(std::string(name));
        const auto old_bytes = bytes_of(path);
        rewrite_file(path.string(), set_field("title", "new"));
        const auto new_bytes = bytes_of(path);
        for (const auto step : all_steps) {
            SCOPED_TRACE(testing::Message() << name << " at step " << static_cast<int>(step));
            put_bytes(path, old_bytes);
            ASSERT_EQ(status_of_child([&] {
                          const rewrite_faults kill{.at_step =
                                                        [&](rewrite_step now) {
                                                            if (now == step) _exit(9);
                                                        },
                                                    .at_write = {}};
                          rewrite_file(path.string(), set_field("title", "new"), {.faults = &kill});
                      }),
                      9);
            EXPECT_EQ(bytes_of(path), step < rewrite_step::renamed ? old_bytes : new_bytes);
            // The next rewrite takes what the dead one has left away.
            rewrite_file(path.string(), set_field("title", "next"));
            EXPECT_EQ(first_value(read_file(path.string()), "title"), "next");
            EXPECT_EQ(files_in_folder(), 1u);
        }
        fs::remove(path);
    }
}

TEST_F(rewrite, failing_at_any_step_or_write_leaves_the_old_file_and_no_copy) {
    for (const auto name : formats) {
        const auto path = copy(std::string(name));
        const auto old_bytes = bytes_of(path);
        for (const auto step : all_steps) {
            if (step >= rewrite_step::renamed) continue;
            const rewrite_faults fault{.at_step =
                                           [&](rewrite_step now) {
                                               if (now == step) throw std::runtime_error("fault");
                                           },
                                       .at_write = {}};
            EXPECT_THROW(rewrite_file(path.string(), set_field("title", "new"), {.faults = &fault}), std::runtime_error);
            EXPECT_EQ(bytes_of(path), old_bytes);
            EXPECT_EQ(files_in_folder(), 1u);
        }
        // Every single write fails once, until an attempt gets by without reaching the failing one.
        int writes = 0;
        for (int failing = 0; failing <= writes; ++failing) {
            writes = 0;
            const rewrite_faults full{.at_step = {},
                                      .at_write = [&](std::size_t) { return writes++ == failing ? ENOSPC : 0; }};
            const auto message = message_of(
                [&] { rewrite_file(path.string(), set_field("lyrics", std::string(100000, 'x')), {.faults = &full}); });
            if (writes <= failing) {
                EXPECT_EQ(message, "(no error)");
                break;
            }
            EXPECT_TRUE(message.starts_with(path.string())) << message;
            EXPECT_NE(message.find("disk is full"), message.npos) << message;
            EXPECT_EQ(bytes_of(path), old_bytes) << name << " write " << failing;
        }
        EXPECT_EQ(files_in_folder(), 1u);
        fs::remove(path);
    }
}

TEST_F(rewrite, on_a_disk_without_room_says_so_and_changes_nothing) {
    const auto disk = folder_ / "disk";
    fs::create_directory(disk);
    if (mount("none", disk.c_str(), "tmpfs", 0, "size=300k") != 0) GTEST_SKIP() << "needs the right to mount";
    fs::copy_file(AUDIO_FIXTURES "/flac.flac", disk / "a.flac");
    const auto old_bytes = bytes_of(disk / "a.flac");
    const auto message = message_of([&] { rewrite_file((disk / "a.flac").string(), set_field("title", "new")); });
    EXPECT_NE(message.find("disk is full"), message.npos) << message;
    EXPECT_EQ(bytes_of(disk / "a.flac"), old_bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(disk), {}), 1);
    umount(disk.c_str());
}

TEST_F(rewrite, keeps_mode_owner_attributes_and_if_asked_the_time) {
    const auto path = copy("flac.flac");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    const bool other_owner = chown(path.c_str(), 1234, 4321) == 0;
    const bool attributes = setxattr(path.c_str(), "user.note", "mine", 4, 0) == 0;
    const timespec times[] = {{1000, 5}, {2000, 7}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    EXPECT_TRUE(rewrite_file(path.string(), set_field("title", "a"), {.preserve_modification_time = true}).notes.empty());
    EXPECT_EQ(about(path).st_mode & 07777, 0640u);
    EXPECT_EQ(about(path).st_mtim.tv_sec, 2000);
    EXPECT_EQ(about(path).st_mtim.tv_nsec, 7);
    EXPECT_TRUE(!other_owner || (about(path).st_uid == 1234 && about(path).st_gid == 4321));
    char note[4] = {};
    EXPECT_TRUE(!attributes || getxattr(path.c_str(), "user.note", note, sizeof note) == 4);
    rewrite_file(path.string(), set_field("title", "b"));
    EXPECT_NE(about(path).st_mtim.tv_sec, 2000);
}

TEST_F(rewrite, follows_a_symbolic_link_and_tells_of_a_broken_hard_link) {
    const auto path = copy("flac.flac"), link = folder_ / "link.flac", twin = folder_ / "twin.flac";
    fs::create_symlink(path, link);
    fs::create_hard_link(path, twin);
    const auto result = rewrite_file(link.string(), set_field("title", "new"));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(first_value(read_file(path.string()), "title"), "new");
    EXPECT_EQ(first_value(read_file(twin.string()), "title"), "Number flac – één");
    ASSERT_EQ(result.notes.size(), 1u);
    EXPECT_NE(result.notes[0].find("hard link"), std::string::npos);
}

TEST_F(rewrite, refuses_what_is_protected) {
    const auto path = copy("flac.flac");
    const auto old_bytes = bytes_of(path);
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    const auto try_it = [&] { return message_of([&] { rewrite_file(path.string(), set_field("title", "new")); }); };
    EXPECT_NE(try_it().find("is read-only"), std::string::npos);
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder_.c_str(), 0555), 0);
    // The administrator may write anywhere, so another user tries.
    const int status = status_of_child([&] {
        if (getuid() == 0 && setuid(65534) != 0) _exit(2);
        const auto message = try_it();
        _exit(message.starts_with(path.string()) && message.find("permission denied; check the permissions") != message.npos
                  ? 0
                  : 1);
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(bytes_of(path), old_bytes);
    ASSERT_EQ(chmod(folder_.c_str(), 0755), 0);
    EXPECT_EQ(files_in_folder(), 1u);
}

TEST_F(rewrite, gives_way_to_a_change_by_another_program) {
    const auto path = copy("flac.flac");
    const std::string other_bytes = bytes_of(path) + "appended";
    const std::function<void()> changes[] = {
        [&] { put_bytes(path, other_bytes); },
        [&] {
            put_bytes(folder_ / "new", other_bytes);
            fs::rename(folder_ / "new", path);
        },
    };
    for (const auto& change : changes) {
        copy("flac.flac");
        const rewrite_faults meanwhile{.at_step =
                                           [&](rewrite_step now) {
                                               if (now == rewrite_step::synced) change();
                                           },
                                       .at_write = {}};
        const auto message =
            message_of([&] { rewrite_file(path.string(), set_field("title", "new"), {.faults = &meanwhile}); });
        EXPECT_NE(message.find("changed by another program meanwhile"), message.npos) << message;
        EXPECT_EQ(bytes_of(path), other_bytes);
        EXPECT_EQ(files_in_folder(), 1u);
    }
}

TEST_F(rewrite, of_one_file_by_many_threads_loses_no_edit_that_was_reported_done) {
    const auto path = copy("flac.flac").string();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&, number] {
            for (bool done = false; !done;) try {
                    rewrite_file(path, set_field("field " + std::to_string(number), "x"));
                    done = true;
                } catch (const std::exception& error) {
                    EXPECT_NE(std::string(error.what()).find("another program"), std::string::npos) << error.what();
                }
        });
    for (auto& thread : threads) thread.join();
    const auto info = read_file(path);
    for (int number = 0; number < 4; ++number) EXPECT_EQ(first_value(info, "field " + std::to_string(number)), "x");
    EXPECT_EQ(files_in_folder(), 1u);
}

TEST_F(rewrite, removes_only_copies_whose_makers_are_dead) {
    const auto own = next_copy_name("a.mp3");
    const char* others[] = {".ostrevan-notes.mp3", ".ostrevan-1-2-3", "ostrevan-1-2-3.mp3", ".ostrevan-1-2-3.mp3.bak"};
    const auto dead = ".ostrevan-7ffffffe-1-0.mp3";
    for (const auto* name : others) put_bytes(folder_ / name, "x");
    put_bytes(folder_ / own, "x");
    put_bytes(folder_ / dead, "x");
    // Another process took over the number of the maker.
    const auto reused = ".ostrevan-1-7-0.mp3";
    put_bytes(folder_ / reused, "x");
    EXPECT_EQ(remove_stale_copies(folder_.string()), 2u);
    EXPECT_FALSE(fs::exists(folder_ / dead) || fs::exists(folder_ / reused));
    EXPECT_EQ(files_in_folder(), 5u);
}

}  // namespace
}  // namespace ostrevan::tags
