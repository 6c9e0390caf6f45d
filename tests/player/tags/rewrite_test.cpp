#include "player/tags/rewrite.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>

#include <cerrno>
#include <functional>
#include <thread>

#include "player/tags/ogg_pages.h"
#include "player/tags/reader.h"
#include "player/tags/stale_copies.h"
#include "player/tags/working_copy.h"
#include "tests/player/synced_files.h"
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

rewrite_faults at(rewrite_step step, const std::function<void()>& action) {
    return {.at_step =
                [=](rewrite_step now) {
                    if (now == step) action();
                },
            .at_write = {}};
}

struct stat about(const fs::path& path) {
    struct stat result {};
    EXPECT_EQ(stat(path.c_str(), &result), 0) << path;
    return result;
}

TEST_F(rewrite, killed_or_failing_at_any_step_or_write_leaves_the_old_file_or_the_new_one) {
    for (const auto name : formats) {
        const auto path = copy(std::string(name));
        const auto old_bytes = bytes_of(path);
        synced.clear();
        rewrite_file(path.string(), set_field("title", "new"));
        ASSERT_EQ(synced.size(), 2u);
        EXPECT_TRUE(maker_of_copy(fs::path(synced[0]).filename().string()) && synced[1] == folder_) << synced[0];
        const auto new_bytes = bytes_of(path);
        for (const auto step : all_steps) {
            SCOPED_TRACE(testing::Message() << name << " at step " << static_cast<int>(step));
            put_bytes(path, old_bytes);
            const auto kill = at(step, [] { _exit(9); });
            EXPECT_EQ(status_of_child([&] { refusal_of(path, set_field("title", "new"), &kill); }), 9);
            EXPECT_EQ(bytes_of(path), step < rewrite_step::renamed ? old_bytes : new_bytes);
            // The next rewrite takes what the dead one has left away.
            rewrite_file(path.string(), set_field("title", "next"));
            put_bytes(path, old_bytes);
            const auto fault = at(step, [] { throw std::runtime_error("fault"); });
            EXPECT_EQ(refusal_of(path, set_field("title", "new"), &fault), "fault");
            expect_alone(path, step < rewrite_step::renamed ? old_bytes : new_bytes);
        }
        put_bytes(path, old_bytes);
        // Every single write fails once, until an attempt gets by without reaching the failing one.
        std::string message;
        for (int failing = 0; message != "(no error)" && failing < 1000; ++failing) {
            expect_alone(path, old_bytes);
            int writes = 0;
            const rewrite_faults full{.at_step = {},
                                      .at_write = [&](std::size_t) { return writes++ == failing ? ENOSPC : 0; }};
            message = refusal_of(path, set_field("lyrics", std::string(100000, 'x')), &full);
            const bool told = message.starts_with(path.string()) && message.find("disk is full") != message.npos;
            EXPECT_EQ(told, writes > failing) << message;
        }
        EXPECT_EQ(message, "(no error)");
        fs::remove(path);
    }
}

/// The copy is harmed as a fault of an editor would: nothing but the verification is left to notice it.
TEST_F(rewrite, gives_a_copy_up_whose_sound_an_editor_has_harmed) {
    using change_of_bytes = std::function<std::string(std::string)>;
    const auto expect_refusal = [&](const fs::path& path, const change_of_bytes& change) {
        const auto old_bytes = bytes_of(path);
        const auto fault = at(rewrite_step::edited, [&] {
            for (const auto& entry : fs::directory_iterator(folder_))
                if (entry.path() != path) put_bytes(entry.path(), change(bytes_of(entry.path())));
        });
        const auto message = refusal_of(path, set_field("title", "new"), &fault);
        EXPECT_TRUE(message.ends_with("(the file is unchanged)")) << path << message;
        expect_alone(path, old_bytes);
        fs::remove(path);
    };
    // Where the sound begins and ends; the checksum of FLAC's samples; MP4's chunks, samples, their sizes, the decoder, and
    // of fragments the base, runs and sizes; Ogg's checksum and position; the identifier of the data; sizes of chunks.
    const std::pair<const char*, harm> faults[] = {{"id3v24.mp3", {"ID3\4", 9, -1}},
                                                   {"rich-id3v24.mp3", {"APETAGEX", 12, 8}},
                                                   {"wavpack.wv", {"APETAGEX", 12, -8}},
                                                   {"flac.flac", {"fLaC", 26, 1}},
                                                   {"faststart.m4a", {"stco", 15, 1}},
                                                   {"aac.m4a", {"stsz", 19, 1}},
                                                   {"aac.m4a", {"stsc", 19, -1}},
                                                   {"alac.m4a", {"alac", 20, 1}},
                                                   {"fragments.m4a", {"tfhd", 19, 1}},
                                                   {"fragments.m4a", {"trun", 15, 1}},
                                                   {"fragments.m4a", {"trun", 27, 1}},
                                                   {"vorbis.ogg", {"OggS", 22, 1}},
                                                   {"rich-vorbis.ogg", {"OggS", 6, 1}},
                                                   {"wma.wma", {"\x36\x26\xB2\x75", 1, 1}},
                                                   {"wma.wma", {"\x91\x07\xDC\xB7", 90, 1}},
                                                   {"pcm.wav", {"RIFF", 5, -1}},
                                                   {"pcm.aiff", {"FORM", 6, 1}},
                                                   {"pcm.wav", {"fmt ", 16, 1}},
                                                   {"pcm.wav", {"data", 4, -2}},
                                                   {"pcm.aiff", {"SSND", 7, -2}}};
    for (const auto& [file, harm] : faults) {
        SCOPED_TRACE(testing::Message() << file << " " << harm.marker << " " << harm.offset);
        expect_refusal(copy(file), harm);
    }
    // The last page of an Ogg file, its checksum made right: as an editor writes it that counts, cuts or ends wrongly.
    void (*const slips[])(ogg_page_fields&) = {
        [](ogg_page_fields& page) { ++page.number; }, [](ogg_page_fields& page) { page.flags ^= ogg_page::continues; },
        [](ogg_page_fields& page) { page.flags ^= ogg_page::last; }, [](ogg_page_fields& page) { ++page.position; }};
    for (const auto slip : slips)
        expect_refusal(copy("speex.spx"), [&](std::string bytes) {
            const auto at = bytes.rfind("OggS");
            const auto size = std::size_t{27} + static_cast<unsigned char>(bytes[at + 26]);
            const ogg_page page{.at = 0, .body_size = 0, .header = bytes.substr(at, size)};
            ogg_page_fields fields{page.flags(), page.position(), page.serial(), page.number()};
            slip(fields);
            return bytes.replace(at, size, page_header(fields, page.segments(), bytes.substr(at + size)));
        });
    // Samples of a fragment that have the size stated once for all of them, in front.
    auto fragments = bytes_of(copy("fragments.m4a"));
    for (const harm& each : {harm{"trun", 6, -2}, {"tfhd", 7, -16}, {"trex", 23, 2}}) fragments = each(fragments);
    put_bytes(folder_ / "fragments.m4a", fragments);
    expect_refusal(folder_ / "fragments.m4a", harm{"mdat", 4, 1});
    // In the middle of every file is its sound.
    std::string (*const anywhere[])(std::string) = {
        [](std::string bytes) { return bytes.replace(bytes.size() / 2, 4, "xxxx"); },
        [](std::string bytes) { return bytes.erase(bytes.size() / 2, 1); },
        [](std::string bytes) { return bytes.insert(bytes.size() / 2, 1, 'x'); }};
    for (const auto& entry : fs::directory_iterator(AUDIO_FIXTURES))
        if (const auto name = entry.path().filename().string(); !name.starts_with("rich-") && name != ".made")
            for (const auto change : anywhere) expect_refusal(copy(name), change);
}

TEST_F(rewrite, on_a_disk_without_room_says_so_and_changes_nothing) {
    const auto disk = folder_ / "disk";
    fs::create_directory(disk);
    if (mount("none", disk.c_str(), "tmpfs", 0, "size=300k") != 0) GTEST_SKIP() << "needs the right to mount";
    fs::copy_file(AUDIO_FIXTURES "/flac.flac", disk / "a.flac");
    const auto old_bytes = bytes_of(disk / "a.flac");
    const auto message = refusal_of(disk / "a.flac");
    EXPECT_NE(message.find("disk is full"), message.npos) << message;
    EXPECT_EQ(bytes_of(disk / "a.flac"), old_bytes);
    EXPECT_EQ(std::distance(fs::directory_iterator(disk), {}), 1);
    umount(disk.c_str());
}

TEST_F(rewrite, keeps_mode_owner_attributes_and_if_asked_the_time) {
    const auto path = copy("flac.flac");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    const bool other_owner = chown(path.c_str(), 1234, 4321) == 0;
    ASSERT_EQ(chmod(path.c_str(), 06640), 0);
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
    EXPECT_NE(refusal_of(path).find("is read-only"), std::string::npos);
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder_.c_str(), 0555), 0);
    // The administrator may write anywhere, so another user tries.
    const int status = status_of_child([&] {
        if (getuid() == 0 && setuid(65534) != 0) _exit(2);
        _exit(refusal_of(path).find("permission denied; check the permissions") == std::string::npos);
    });
    EXPECT_EQ(status, 0);
    ASSERT_EQ(chmod(folder_.c_str(), 0755), 0);
    expect_alone(path, old_bytes);
}

TEST_F(rewrite, gives_way_to_a_change_by_another_program) {
    const auto path = copy("flac.flac");
    const std::string other_bytes = bytes_of(path) + "appended";
    const std::function<void()> changes[] = {[&] { put_bytes(path, other_bytes); },
                                             [&] {
                                                 put_bytes(folder_ / "new", other_bytes);
                                                 fs::rename(folder_ / "new", path);
                                             }};
    for (const auto& change : changes) {
        copy("flac.flac");
        const auto meanwhile = at(rewrite_step::synced, change);
        const auto message = refusal_of(path, set_field("title", "new"), &meanwhile);
        EXPECT_NE(message.find("changed by another program meanwhile"), message.npos) << message;
        expect_alone(path, other_bytes);
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
                    done = std::string(error.what()).find("another program") == std::string::npos;
                    EXPECT_FALSE(done) << error.what();
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
    // Of one the process is gone, of the other its number belongs to another process now.
    const char *dead = ".ostrevan-7ffffffe-1-0.mp3", *reused = ".ostrevan-1-7-0.mp3";
    for (const auto* name : others) put_bytes(folder_ / name, "x");
    for (const auto& name : {std::string(dead), std::string(reused), own}) put_bytes(folder_ / name, "x");
    {
        // In the hands of another machine that shares the folder.
        const system::descriptor held(open((folder_ / dead).c_str(), O_RDONLY));
        ASSERT_EQ(flock(held.get(), LOCK_EX), 0);
        EXPECT_EQ(remove_stale_copies(folder_.string()), 1u);
    }
    EXPECT_EQ(remove_stale_copies(folder_.string()), 1u);
    EXPECT_FALSE(fs::exists(folder_ / dead) || fs::exists(folder_ / reused));
    EXPECT_EQ(files_in_folder(), 5u);
}

}  // namespace
}  // namespace ostrevan::tags
