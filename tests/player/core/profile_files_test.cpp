// The files of the core in the profile folder: configuration, lock, and their permissions.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "player/core/profile_folder.h"
#include "player/core/profile_lock.h"
#include "player/services/configuration_store.h"
#include "player/services/crash_log_service.h"
#include "player/system/default_folders.h"
#include "player/system/durable_file.h"
#include "tests/player/synced_files.h"
#include "tests/player/temporary_folder.h"

namespace ostrevan::core {
namespace {

using namespace std::chrono_literals;
using profile_files = temporary_folder;
using testing::HasSubstr;
constexpr auto setting = nuv::guid_of("{9035A43F-E915-4EEC-8DF9-7920D4D2FF19}");

TEST_F(profile_files, configuration_keeps_what_was_set_and_falls_back_otherwise) {
    const auto file = path("configuration.json");
    {
        service_uncounted_t<services::configuration_store_impl> store(file);
        EXPECT_TRUE(store.get_bool(setting, true));
        store.set_bool(setting, false);
    }
    EXPECT_FALSE(service_uncounted_t<services::configuration_store_impl>(file).get_bool(setting, true));
    EXPECT_EQ(mode(file), 0600U);
    const auto refused = [&] {
        return failure_of([&] { const service_uncounted_t<services::configuration_store_impl> store(file); });
    };
    for (const char* damaged : {"{ \"a\": tr", "[]", ""}) {
        write(file, damaged);
        EXPECT_THAT(refused(), HasSubstr(file + " cannot be read: it is not a JSON object. ")) << damaged;
        EXPECT_EQ(content(file), damaged);
    }
    write(file, "{\"" + nuv::guid_text(setting) + "\": 1}");
    EXPECT_TRUE(service_uncounted_t<services::configuration_store_impl>(file).get_bool(setting, true)) << "of another kind";
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_THAT(refused(), HasSubstr("it is not a file"));
}

TEST_F(profile_files, a_replacement_that_fails_leaves_the_old_file_and_nothing_else) {
    system::replace_file(path("file"), "old");
    synced.clear();
    system::replace_file(path("file"), "new");
    EXPECT_THAT(synced, testing::ElementsAre(testing::StartsWith(path("file.")), folder_));
    EXPECT_EQ(content(path("file")), "new");
    std::filesystem::create_directory(path("folder"));
    for (const auto& place : {path("folder"), path("absent/file"), std::string("/dev/full/file")})
        EXPECT_THROW(system::replace_file(place, "x"), std::runtime_error) << place;
    EXPECT_EQ(names(), (std::vector<std::string>{"file", "folder"}));
}

TEST_F(profile_files, are_kept_to_their_user_unless_the_folder_holds_other_things) {
    for (const char* other : {"", "notes.txt"}) {
        const auto profile = path("parent/profile") + other;
        prepare_profile(profile);
        EXPECT_EQ(mode(profile), 0700U);
        std::filesystem::create_directory(profile + "/backup");
        for (const std::string name : {"index.sqlite", "library.sqlite-wal", "backup/copy", "PlaybackStatistics.dat"}) {
            write(profile + "/" + name, "");
            std::filesystem::permissions(profile + "/" + name, std::filesystem::perms(0644));
        }
        std::filesystem::create_symlink("PlaybackStatistics.dat", profile + "/lock");
        if (*other != '\0') write(profile + "/" + other, "");
        std::filesystem::permissions(profile, std::filesystem::perms(0755));
        prepare_profile(profile);
        EXPECT_EQ(mode(profile), *other == '\0' ? 0700U : 0755U);
        for (const std::string name : {"index.sqlite", "library.sqlite-wal", "backup/copy"})
            EXPECT_EQ(mode(profile + "/" + name), 0600U) << name;
        EXPECT_EQ(mode(profile + "/PlaybackStatistics.dat"), 0644U);
    }
    EXPECT_THAT(failure_of([] { prepare_profile("/proc/nosuch"); }), HasSubstr("/proc/nosuch"));
    EXPECT_THAT(failure_of([] { prepare_profile(""); }), HasSubstr("HOME"));
}

TEST_F(profile_files, tell_of_each_crash_and_the_events_before_it) {
    service_uncounted_t<services::crash_log_service_impl> log(path("crash.log"));
    for (int i = 1; i <= 201; ++i) log.on_event(std::to_string(i).c_str());
    for (const char* text : {"one", "two"}) log.write_crash(text, "a.dll");
    EXPECT_THAT(content(path("crash.log")),
                testing::AllOf(testing::StartsWith("2\n3\n"), HasSubstr("\n201\nBug check: one (a.dll, 20"),
                               HasSubstr(")\n2\n3\n"), HasSubstr("\n201\nBug check: two (a.dll, 20")));
}

TEST_F(profile_files, lie_at_an_absolute_place_or_nowhere) {
    const auto place = [](const char* data, const char* home) {
        ::setenv("XDG_DATA_HOME", data, 1);
        ::setenv("HOME", home, 1);
        return system::default_profile();
    };
    EXPECT_EQ(place("/data", "/home/me"), "/data/ostrevan");
    EXPECT_EQ(place("data", "/home/me"), "/home/me/.local/share/ostrevan");
    EXPECT_EQ(place("", "."), "");
}

TEST_F(profile_files, a_second_process_is_told_who_holds_the_profile) {
    EXPECT_TRUE(profile_lock::take(folder_)->is_exclusive());
    EXPECT_EQ(mode(path("lock")), 0600U);
    write(path("lock"), "99999999999");  // longer than the number that follows
    {
        const auto held = profile_lock::take(folder_);
        EXPECT_FALSE(profile_lock::take(folder_).has_value());
        EXPECT_EQ(holder_of(folder_), std::to_string(::getpid()));
    }
    const pid_t child = ::fork();
    if (child == 0) {
        const auto held = profile_lock::take(folder_);
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_TRUE(profile_lock::take(folder_).has_value());
}

TEST_F(profile_files, what_is_in_the_place_of_the_lock_is_named_and_left_alone) {
    const auto lock = path("lock");
    write(path("precious"), "12");
    const std::vector<std::function<void()>> cases = {[&] { std::filesystem::create_symlink("precious", lock); },
                                                      [&] { std::filesystem::create_hard_link(path("precious"), lock); },
                                                      [&] { ASSERT_EQ(::mkfifo(lock.c_str(), 0600), 0); },
                                                      [&] { std::filesystem::create_directory(lock); },
                                                      [&] { write(lock, "my notes"); }};
    for (const auto& prepare : cases) {
        std::filesystem::remove(lock);
        prepare();
        EXPECT_THAT(failure_of([&] { (void)profile_lock::take(folder_); }), HasSubstr(lock + " is not the player's"));
        EXPECT_EQ(content(path("precious")), "12");
    }
    EXPECT_EQ(content(lock), "my notes");
}

}  // namespace
}  // namespace ostrevan::core
