// What the core keeps in the profile folder: the configuration, the lock.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "player/core/configuration_file.h"
#include "player/core/durable_file.h"
#include "player/core/profile_lock.h"

namespace ostrevan {
namespace {

constexpr auto setting = nuv::guid_of("{9035A43F-E915-4EEC-8DF9-7920D4D2FF19}");

class profile_files : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "profile-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    [[nodiscard]] std::string path(const char* name) const { return folder_ + "/" + name; }
    static std::string content(const std::string& file) {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static void write(const std::string& file, const std::string& text) { std::ofstream(file) << text; }
    [[nodiscard]] std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
    }

    std::string folder_;
};

TEST_F(profile_files, configuration_keeps_what_was_set_and_falls_back_otherwise) {
    {
        service_uncounted_t<configuration_file> store(path("configuration.json"));
        EXPECT_TRUE(store.get_bool(setting, true));
        store.set_bool(setting, false);
    }
    EXPECT_FALSE(service_uncounted_t<configuration_file>(path("configuration.json")).get_bool(setting, true));
}

TEST_F(profile_files, a_damaged_configuration_is_named_and_left_alone) {
    for (const char* damaged : {"{ \"a\": tr", "[]", ""}) {
        write(path("configuration.json"), damaged);
        try {
            const service_uncounted_t<configuration_file> store(path("configuration.json"));
            FAIL() << damaged;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(path("configuration.json")), std::string::npos);
        }
        EXPECT_EQ(content(path("configuration.json")), damaged);
    }
}

TEST_F(profile_files, a_replacement_that_fails_leaves_the_old_file_and_nothing_else) {
    replace_file(path("file"), "old");
    replace_file(path("file"), "new");
    EXPECT_EQ(content(path("file")), "new");
    EXPECT_THROW(replace_file(folder_ + "/absent/file", "x"), std::runtime_error);
    EXPECT_THROW(replace_file("/dev/full/file", "x"), std::runtime_error);
    EXPECT_EQ(files(), 1U);
}

TEST_F(profile_files, a_second_process_is_told_who_holds_the_profile) {
    const auto patience = std::chrono::milliseconds(50);
    {
        const profile_lock held(folder_, patience);
        try {
            const profile_lock second(folder_, patience);
            FAIL() << "two locks on one profile";
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find("in use by process " + std::to_string(::getpid())), std::string::npos)
                << error.what();
        }
    }
    const profile_lock again(folder_, patience);
}

TEST_F(profile_files, a_process_that_is_killed_does_not_keep_its_lock) {
    const pid_t child = ::fork();
    if (child == 0) {
        const profile_lock held(folder_, std::chrono::milliseconds(0));
        ::kill(::getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    const profile_lock free(folder_, std::chrono::milliseconds(0));
}

}  // namespace
}  // namespace ostrevan
