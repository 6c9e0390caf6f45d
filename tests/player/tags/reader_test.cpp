#include "player/tags/reader.h"

#include <sys/stat.h>

#include "player/tags/formats.h"
#include "tests/player/tags/audio_files.h"

namespace ostrevan::tags {
namespace {

using reader = audio_files;

TEST_F(reader, finds_the_same_fields_and_the_sound_in_every_format) {
    struct expected {
        const char* file;
        const char* codec;
        std::uint32_t rate;
        std::uint32_t channels;
        double length;
    };
    constexpr double mpeg_frames = 78 * 1152 / 44100.0;
    const expected formats[] = {{"id3v24.mp3", "MP3", 44100, 2, mpeg_frames},
                                {"id3v23.mp3", "MP3", 44100, 2, mpeg_frames},
                                {"variable.mp3", "MP3", 22050, 2, 79 * 576 / 22050.0},
                                {"flac.flac", "FLAC", 44100, 2, 2},
                                {"vorbis.ogg", "Vorbis", 44100, 2, 2},
                                {"opus.opus", "Opus", 48000, 2, 2},
                                {"speex.spx", "Speex", 32000, 1, 63651 / 32000.0},
                                {"oggflac.oga", "FLAC", 44100, 2, 2},
                                {"aac.m4a", "AAC", 44100, 2, 2.023},
                                {"alac.m4a", "ALAC", 44100, 2, 2},
                                {"wavpack.wv", "WavPack", 44100, 2, 2},
                                {"pcm.aiff", "PCM", 44100, 2, 2},
                                {"wma.wma", "WMA 2", 44100, 2, 2.042},
                                {"tta.tta", "TTA", 44100, 2, 2},
                                {"ape.ape", "Monkey's Audio", 44100, 2, 2}};
    for (const auto& each : formats) {
        SCOPED_TRACE(each.file);
        const file_info_builder info = read_file(std::string(AUDIO_FIXTURES) + "/" + each.file);
        EXPECT_EQ(info.codec, each.codec);
        EXPECT_EQ(info.sample_rate, each.rate);
        EXPECT_EQ(info.channels, each.channels);
        EXPECT_NEAR(info.length, each.length, 1e-9);
        for (const auto& [field, value] : {std::pair("album artist", "Various Engines"),
                                           {"tracknumber", "3"},
                                           {"totaltracks", "12"},
                                           {"discnumber", "1"},
                                           {"totaldiscs", "2"},
                                           {"date", "1843"}})
            EXPECT_EQ(first_value(info, field), value);
        EXPECT_EQ(first_value(info, "title"), "Number " + fs::path(each.file).extension().string().substr(1) + " – één");
    }
}

TEST_F(reader, finds_statistics_under_any_spelling_and_in_any_tag_and_several_values_in_order) {
    for (const auto* name : {"rich-id3v24.mp3", "rich-id3v23.mp3", "rich-flac.flac", "rich-aac.m4a", "rich-wma.wma",
                             "rich-wavpack.wv", "rich-pcm.aiff", "rich-pcm.wav", "rich-tta.tta"})
        EXPECT_EQ(first_value(read_file(std::string(AUDIO_FIXTURES) + "/" + name), "play_count"), "3") << name;
    const std::vector<std::string> people = {"Ada Byron", "Charles Babbage"}, genres = {"Electronic", "Mechanical"};
    for (const auto* name : {"rich-id3v24.mp3", "rich-flac.flac", "rich-aac.m4a", "rich-wavpack.wv"}) {
        const auto info = read_file(std::string(AUDIO_FIXTURES) + "/" + name);
        EXPECT_EQ(info.meta_values(info.meta_find("artist")), people) << name;
    }
    const auto info = read_file(AUDIO_FIXTURES "/rich-wma.wma");
    EXPECT_EQ(info.meta_values(info.meta_find("genre")), genres);
    EXPECT_EQ(first_value(info, "yes"), "1");
    EXPECT_EQ(first_value(info, "rating"), "(none)");
}

TEST_F(reader, marks_files_by_their_sound) {
    for (const auto& path : copy_all()) {
        const auto mark = read_audio(path.string()).sound;
        EXPECT_NE(mark, 0U) << path;
        // FLAC carries a digest in its first block; of Ogg the last page counts, of MP4 the first atom, else the middle.
        auto bytes = bytes_of(path);
        auto begin = bytes.size() * 3 / 8, end = bytes.size() * 5 / 8;
        if (bytes.starts_with("OggS")) end = 1 + (begin = bytes.size() - 1);
        if (path.extension() == ".flac") end = 1 + (begin = bytes.find("fLaC") + 26);
        if (path.extension() == ".m4a") begin = bytes.find("mdat") + 4;
        if (path.filename() == "fragments.m4a") end = begin + bytes.size() / 8;
        for (auto i = begin; i < end; ++i) bytes[i] ^= 1;
        put_bytes(path, bytes);
        EXPECT_NE(read_audio(path.string()).sound, mark) << path;
    }
}

TEST_F(reader, says_why_a_file_cannot_be_read_and_never_waits) {
    const auto fifo = folder_ / "pipe.mp3", text = folder_ / "text.flac", empty = folder_ / "empty.ogg";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    put_bytes(text, std::string(5000, 'x'));
    put_bytes(empty, "");
    const std::pair<fs::path, const char*> cases[] = {{folder_ / "none.mp3", "no such file"},
                                                      {fifo, "not a regular file"},
                                                      {folder_, "is a folder"},
                                                      {empty, "is empty"},
                                                      {text, "not an audio file of a supported format"}};
    for (const auto& [path, reason] : cases) {
        const auto message = failure_of([&] { read_file(path.string()); });
        EXPECT_TRUE(message.starts_with(path.string() + ": ")) << message;
        EXPECT_NE(message.find(reason), message.npos) << message;
    }
}

TEST_F(reader, goes_by_the_content_whatever_the_extension) {
    fs::copy_file(AUDIO_FIXTURES "/flac.flac", folder_ / "really.mp3");
    EXPECT_EQ(read_file((folder_ / "really.mp3").string()).codec, "FLAC");
    EXPECT_TRUE(has_supported_extension("/music/A.B/Song.FLAC"));
    EXPECT_FALSE(has_supported_extension("/music/song.flac/cover.png"));
}

}  // namespace
}  // namespace ostrevan::tags
