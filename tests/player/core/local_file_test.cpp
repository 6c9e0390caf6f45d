#include "player/core/local_file.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "ostrevan/exceptions.h"
#include "player/core/filesystems.h"

namespace {

using namespace ostrevan;
using enum filesystem::open_mode;
using testing::HasSubstr;

class local_files : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/files-XXXXXX";
        folder_ = ::mkdtemp(name);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }
    std::string at(const char* name) const { return folder_ + "/" + name; }

    /// What opening says that it failed with.
    template <typename Exception>
    static std::string refusal(const std::string& path, filesystem::open_mode mode) {
        try {
            open_local_file(path, mode);
        } catch (const Exception& error) {
            return error.what();
        }
        return "opened";
    }

    std::string folder_;
};

TEST_F(local_files, hold_what_was_written_in_place_of_what_was_there) {
    const auto path = at("a.xml");
    std::ofstream(path) << "something longer than what follows";
    service_uncounted_t<local_filesystem> files;
    {
        const auto file = files.open(("FILE://" + path).c_str(), write_new);
        file->write("first ", 6);
        file->write("second", 6);
        file->flush();
    }
    const auto file = files.open(path.c_str(), read);
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

TEST_F(local_files, that_cannot_be_opened_are_named_with_the_reason) {
    using namespace ostrevan_io;
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_THAT(refusal<exception_io_not_found>(at("nosuch"), read), HasSubstr(at("nosuch") + " cannot be opened: No such"));
    EXPECT_THAT(refusal<exception_io_not_found>(at("nosuch/a"), write_new), HasSubstr("No such"));
    EXPECT_THAT(refusal<exception_io_system>(folder_, write_new), HasSubstr(folder_ + " cannot be opened: Is a directory"));
    EXPECT_THAT(refusal<exception_io_system>(at("pipe"), write_new), HasSubstr("nobody reads"));
    // Where not even root may write.
    EXPECT_THAT(refusal<exception_io_denied>("/sys/statistics.xml", write_new), HasSubstr("/sys/statistics.xml cannot be"));
}

TEST_F(local_files, without_a_length_have_no_size) {
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0600), 0);
    for (const auto& path : {folder_, at("pipe"), std::string("/dev/zero")})
        EXPECT_EQ(open_local_file(path, read)->size(), std::nullopt) << path;
    char byte;
    EXPECT_THROW(static_cast<void>(open_local_file(folder_, read)->read(&byte, 1)), ostrevan_io::exception_io);
}

TEST_F(local_files, tell_of_a_full_disk) {
    const auto full = open_local_file("/dev/full", write_new);
    EXPECT_THROW(full->write("x", 1), ostrevan_io::exception_io_system);
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
    auto pipe = open_local_file("/dev/fd/" + std::to_string(ends[1]), write_new);
    EXPECT_NO_THROW(pipe->write(sent.data(), sent.size()));
    EXPECT_NO_THROW(pipe->flush());
    pipe.reset();
    ::close(ends[1]);
    reader.join();
    ::close(ends[0]);
    EXPECT_EQ(received, sent.size());
}

}  // namespace
