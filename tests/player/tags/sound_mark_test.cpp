#include "player/tags/reader.h"
#include "tests/player/tags/audio_files.h"

namespace ostrevan::tags {
namespace {

class sound_mark_test : public audio_files {};

TEST_F(sound_mark_test, is_of_the_sound_and_not_of_the_tags) {
    for (const auto& path : copy_all()) {
        const auto mark = [&] { return read_audio(path.string()).sound; };
        const auto before = mark();
        EXPECT_NE(before, 0U) << path;
        // FLAC carries a digest in its first block; of Ogg the last page counts, of MP4 the first atom, else the middle.
        const auto bytes = bytes_of(path);
        const auto around = bytes.size() / 8;
        const auto place = [&]() -> std::pair<std::size_t, std::size_t> {
            if (bytes.starts_with("OggS")) return {bytes.size() - 1, 1};
            if (path.extension() == ".flac") return {bytes.find("fLaC") + 26, 1};
            if (path.filename() == "fragments.m4a") return {bytes.find("mdat") + 4, around};
            if (path.extension() == ".m4a") return {bytes.find("mdat") + 4, 5 * around};
            return {bytes.size() / 2 - around, 2 * around};
        }();
        auto other = bytes;
        for (auto i = place.first; i < place.first + place.second; ++i) other[i] ^= 1;
        put_bytes(path, other);
        EXPECT_NE(mark(), before) << path;
        put_bytes(path, bytes);
        for (const auto& text : {std::string(100'000, 'x'), std::string("y")}) {
            rewrite_file(path.string(), set_field("lyrics", text));
            EXPECT_EQ(mark(), before) << path;
        }
    }
}

}  // namespace
}  // namespace ostrevan::tags
