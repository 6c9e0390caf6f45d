#include "player/services/local_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "ostrevan/exceptions.h"
#include "player/services/filesystem.h"
#include "tests/player/synced_files.h"
#include "tests/player/temporary_folder.h"

namespace ostrevan::services {
namespace {

using enum filesystem::open_mode;
using testing::HasSubstr;

class local_files : public temporary_folder {
protected:
    /// The message of a failed opening.
    template <typename Exception>
    std::string refusal(const std::string& file, filesystem::open_mode mode) {
        try {
            static_cast<void>(files_.open(file.c_str(), mode));
        } catch (const Exception& error) {
            return error.what();
        }
        return "opened";
    }
    [[nodiscard]] file_ptr open_new(const std::string& file) { return files_.open(file.c_str(), write_new); }

    std::vector<std::string> told_;
    service_uncounted_t<local_filesystem_impl> files_{[this](const std::string& text) { told_.push_back(text); }};
};

TEST_F(local_files, hold_what_was_written_in_place_of_what_was_there) {
    write(path("a.xml"), "something longer than what follows");
    std::filesystem::permissions(path("a.xml"), std::filesystem::perms(0640));
    std::filesystem::create_symlink("a.xml", path("link"));
    {
        const auto file = open_new("FILE://" + path("link"));
        file->write("first ", 6);
        EXPECT_EQ(content(path("a.xml")), "something longer than what follows") << "before it is whole";
        synced.clear();
        file->flush();
        file->write("second", 6);
        file->flush();
        EXPECT_THAT(synced, testing::ElementsAre(path("a.xml.part"), folder_, path("a.xml")));
    }
    EXPECT_EQ(names(), (std::vector<std::string>{"a.xml", "link"}));
    EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
    EXPECT_EQ(mode(path("a.xml")), 0640U);
    EXPECT_TRUE(told_.empty());
    const auto file = files_.open(path("a.xml").c_str(), read);
    EXPECT_EQ(file->size(), 12U);
    char text[8] = {};
    file->seek(6);
    file->read_exactly(text, 6);
    EXPECT_STREQ(text, "second");
    EXPECT_EQ(file->read(text, 6), 0U);
    file->seek(8);
    EXPECT_EQ(file->read(text, 6), 4U);
    EXPECT_THROW(file->read_exactly(text, 1), ostrevan_io::exception_io_data_truncation);
    EXPECT_THROW(file->write("x", 1), ostrevan_io::exception_io);
}

TEST_F(local_files, that_were_not_finished_stay_beside_the_older_one_and_are_named) {
    write(path("a.xml"), "whole");
    for (const char* part : {"a.xml.part", "a.xml.part2"}) {
        open_new(path("a.xml"))->write(part, 11);
        EXPECT_EQ(content(path(part)).substr(0, 10), "a.xml.part");
        EXPECT_THAT(told_.back(),
                    HasSubstr(path("a.xml") + " was not finished: what was written of it is in " + path(part)));
    }
    static_cast<void>(open_new(path("b.xml")));
    EXPECT_EQ(told_.size(), 2U) << "nothing was written";
    EXPECT_EQ(content(path("a.xml")), "whole");
    EXPECT_EQ(names(), (std::vector<std::string>{"a.xml", "a.xml.part", "a.xml.part2"}));
}

TEST_F(local_files, that_cannot_be_opened_are_named_with_the_reason) {
    using namespace ostrevan_io;
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_THAT(refusal<exception_io_not_found>(path("nosuch"), read),
                HasSubstr(path("nosuch") + " cannot be opened: No such"));
    EXPECT_THAT(refusal<exception_io_not_found>(path("nosuch/a"), write_new), HasSubstr("No such"));
    EXPECT_THAT(refusal<exception_io_system>(folder_, write_new), HasSubstr(folder_ + " cannot be opened: Is a directory"));
    EXPECT_THAT(refusal<exception_io_system>(path("pipe"), write_new), HasSubstr("nobody reads"));
    // Where not even root may write.
    EXPECT_THAT(refusal<exception_io_denied>("/sys/statistics.xml", write_new), HasSubstr("/sys/statistics.xml"));
}

TEST_F(local_files, that_are_no_regular_files_have_no_size_and_are_written_to_as_they_are) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    for (const auto& each : {folder_, path("pipe"), std::string("/dev/zero")})
        EXPECT_EQ(open_local_file(each, read)->size(), std::nullopt) << each;
    char byte;
    EXPECT_THROW(static_cast<void>(open_local_file(folder_, read)->read(&byte, 1)), ostrevan_io::exception_io);
    EXPECT_THROW(open_new("/dev/full")->write("x", 1), ostrevan_io::exception_io_system);
}

TEST_F(local_files, wait_for_whoever_reads_a_pipe_slowly) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const std::string sent(300'000, 'x');  // more than a pipe holds
    std::size_t received = 0;
    std::thread reader([&] {
        char portion[4096];
        for (ssize_t got; (got = ::read(ends[0], portion, sizeof portion)) > 0;) received += static_cast<std::size_t>(got);
    });
    auto pipe = open_new("/dev/fd/" + std::to_string(ends[1]));
    EXPECT_NO_THROW(pipe->write(sent.data(), sent.size()));
    EXPECT_NO_THROW(pipe->flush());
    pipe.reset();
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_EQ(received, sent.size());
}

}  // namespace
}  // namespace ostrevan::services
