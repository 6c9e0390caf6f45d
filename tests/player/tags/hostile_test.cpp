#include <random>

#include "player/tags/reader.h"
#include "tests/player/tags/audio_files.h"

namespace ostrevan::tags {
namespace {

using hostile_file = audio_files;

/// Reads and rewrites; whatever is refused must be untouched, whatever is accepted must hold the new field.
void expect_no_harm(const fs::path& path, const std::string& bytes) {
    put_bytes(path, bytes);
    try {
        read_file(path.string());
    } catch (const std::exception& error) {
        EXPECT_TRUE(std::string_view(error.what()).starts_with(path.string())) << error.what();
    }
    try {
        rewrite_file(path.string(), set_field("play_count", "1"));
        EXPECT_EQ(first_value(read_file(path.string()), "play_count"), "1");
    } catch (const std::exception& error) {
        EXPECT_TRUE(std::string_view(error.what()).starts_with(path.string())) << error.what();
        EXPECT_EQ(bytes_of(path), bytes);
    }
}

TEST_F(hostile_file, cut_off_changed_or_garbage_is_read_or_refused_and_never_damaged) {
    std::mt19937 random(1843);
    std::string noise(20000, '\0');
    for (char& byte : noise) byte = static_cast<char>(random());
    const std::string starts[] = {"",
                                  std::string("ID3\4\0\0\x7F\x7F\x7F\x7F", 10),
                                  "fLaC",
                                  "OggS",
                                  "RIFF\xFF\xFF\xFF\xFFWAVE",
                                  std::string("\0\0\0 ftypM4A ", 12)};
    for (const auto& path : copy_all()) {
        SCOPED_TRACE(path);
        const auto whole = bytes_of(path);
        for (std::size_t size = 1; size < whole.size(); size += size < 200 ? 7 : size < 5000 ? 331 : whole.size() / 9)
            expect_no_harm(path, whole.substr(0, size));
        // Headers are where a wrong byte does most.
        for (int round = 0; round < 24; ++round) {
            auto bytes = whole;
            for (int change = 0; change < 4; ++change)
                bytes[random() % std::min<std::size_t>(bytes.size(), round % 2 == 0 ? 600 : 12000)] =
                    static_cast<char>(random());
            expect_no_harm(path, bytes);
        }
        for (const auto& start : starts) {
            expect_no_harm(path, start + noise);
            EXPECT_EQ(bytes_of(path), start + noise);
        }
        fs::remove(path);
    }
}

}  // namespace
}  // namespace ostrevan::tags
