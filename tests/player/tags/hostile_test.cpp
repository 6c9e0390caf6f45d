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

TEST_F(hostile_file, cut_off_or_with_changed_bytes_is_read_or_refused_and_never_damaged) {
    std::mt19937 random(1843);
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
        fs::remove(path);
    }
}

TEST_F(hostile_file, may_have_as_many_entries_as_a_tag_can_need_and_no_more) {
    const auto whole = bytes_of(copy("flac.flac"));
    for (const auto& [count, refused] : {std::pair(5000, false), std::pair(5001, true)}) {
        std::string comment(4, '\0');
        comment += {static_cast<char>(count & 0xFF), static_cast<char>(count >> 8), '\0', '\0'};
        for (int i = 0; i < count; ++i) comment += std::string("\3\0\0\0A=b", 7);
        const std::string head = {'\x84', '\0', static_cast<char>(comment.size() >> 8),
                                  static_cast<char>(comment.size() & 0xFF)};
        put_bytes(folder_ / "many.flac", whole.substr(0, 4) + '\0' + whole.substr(5, 37) + head + comment + "sound");
        const auto message = failure_of([&] { read_file((folder_ / "many.flac").string()); });
        EXPECT_EQ(message.find("more than 5,000 entries") != message.npos, refused) << message;
    }
}

TEST_F(hostile_file, of_garbage_is_refused_under_every_extension) {
    std::mt19937 random(7);
    std::string noise(100000, '\0');
    for (char& byte : noise) byte = static_cast<char>(random());
    const std::string starts[] = {"",
                                  "ID3\4\0\0\x7F\x7F\x7F\x7F",
                                  "fLaC",
                                  "OggS",
                                  "RIFF\xFF\xFF\xFF\xFFWAVE",
                                  "\0\0\0\x20"
                                  "ftypM4A "};
    for (const auto* extension : {"mp3", "flac", "ogg", "opus", "m4a", "wv", "ape", "wav", "aiff", "wma", "tta"})
        for (const auto& start : starts) {
            const auto path = folder_ / (std::string("noise.") + extension);
            expect_no_harm(path, start + noise);
            EXPECT_EQ(bytes_of(path), start + noise) << path;
        }
}

}  // namespace
}  // namespace ostrevan::tags
