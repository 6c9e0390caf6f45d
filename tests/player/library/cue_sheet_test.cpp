#include "player/library/cue_sheet.h"

#include <gtest/gtest.h>

#include "player/library/cue_text.h"

namespace {

using namespace ostrevan::library;
using namespace std::string_view_literals;

std::string to_text(const cue_fields& fields) {
    std::string text;
    for (const auto& [name, value] : fields) text += " " + std::string(name) + "=" + value;
    return text;
}

/// The sheet with one line per track: number, file, start-end, fields.
std::string to_text(const cue_sheet& sheet) {
    std::string text = "disc" + to_text(sheet.fields) + "\n";
    for (const auto& track : sheet.tracks)
        text += std::to_string(track.number) + " " + sheet.files.at(track.file) + " " + std::to_string(track.start) + "-" +
                (track.end ? std::to_string(*track.end) : "") + to_text(track.fields) + "\n";
    return text;
}

constexpr auto one_file =
    "REM GENRE \"Baroque Pop\"\nREM DATE 1974\nREM COMMENT \"ExactAudioCopy\"\nCATALOG 123\n"
    "PERFORMER \"The \"Others\"\"\nTITLE Plain Words\nFILE \"my album.wav\" WAVE\n"
    "  TRACK 01 AUDIO\n    TITLE \"One\"\n    ISRC GBAYE7400001\n    INDEX 01 00:00:00\n"
    "  TRACK 02 AUDIO\n    TITLE \"Two\"\n    PERFORMER \"Guest\"\n    INDEX 00 02:59:00\n    INDEX 01 03:00:37\n"sv;
constexpr auto one_file_text =
    "disc genre=Baroque Pop date=1974 artist=The \"Others\" title=Plain Words\n"
    "1 my album.wav 0.000000-180.493333 title=One isrc=GBAYE7400001\n"
    "2 my album.wav 180.493333- title=Two artist=Guest\n"sv;

TEST(cue_sheet, is_read_whatever_its_line_ends_and_encoding) {
    const auto with_ends = [](std::string_view end) {
        std::string text;
        for (const char each : one_file) text += each == '\n' ? std::string(end) : std::string(1, each);
        return text;
    };
    std::string utf16 = "\xFF\xFE";
    for (const char each : with_ends("\r\n")) utf16 += {each, '\0'};
    for (const auto& bytes : {with_ends("\n"), with_ends("\r\n"), with_ends("\r"), "\xEF\xBB\xBF" + with_ends("\n"), utf16})
        EXPECT_EQ(to_text(parse_cue(bytes)), one_file_text);
}

TEST(cue_sheet, understands_what_rippers_write) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        // The gap at the end of the file in front: the track begins in the file of its INDEX 01.
        {"FILE a.wav WAVE\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 02 AUDIO\nTITLE T\nINDEX 00 00:05:00\nFILE b.wav WAVE\n"
         "INDEX 01 00:00:00\n",
         "disc\n1 a.wav 0.000000-\n2 b.wav 0.000000- title=T\n"},
        // The data track of an enhanced disc, and a file that no track is in.
        {"FILE a b.wav WAVE\nTRACK 1 AUDIO\nINDEX 1 0:0:0\nTRACK 2 MODE1/2352\nTITLE data\nINDEX 01 01:00:00\nFILE c.wav "
         "WAVE\n",
         "disc\n1 a b.wav 0.000000-\n"},
        {"file \"a.wav\" wave\ntrack 0999 audio\nindex 01 100:00:74\n", "disc\n999 a.wav 6000.986667-\n"}};
    for (const auto& [bytes, text] : cases) EXPECT_EQ(to_text(parse_cue(bytes)), text);
    const std::pair<std::string_view, std::string_view> texts[] = {{"Caf\xE9 \xC3\xA9", "Café Ã©"},
                                                                   {"\xFE\xFF\xD8\x3C\xDF\xB5\x20\xAC"sv, "🎵€"},
                                                                   {"\xFF\xFE\x00\xD8é"sv, "\uFFFD\uA9C3"}};
    for (const auto& [bytes, text] : texts) EXPECT_EQ(cue_text(bytes), text);
}

TEST(cue_sheet, that_makes_no_sense_is_refused_with_the_line) {
    const std::pair<std::string, std::string_view> cases[] = {
        {"", "no audio track"},
        {"FILE a.wav WAVE\nTRACK 01 AUDIO\n", "no audio track"},
        {"TRACK 01 AUDIO\nINDEX 01 00:00:00\n", "line 2"},
        {"INDEX 01 00:00:00\n", "line 1"},
        {"FILE \"\" WAVE\n", "line 1"},
        {"TRACK 0 AUDIO\n", "line 1"},
        {"TRACK 1000 AUDIO\n", "line 1"},
        {"TRACK 99999999999999999999 AUDIO\n", "line 1"},
        {"FILE a WAVE\nTRACK 1 AUDIO\nINDEX 01 00:60:00\n", "line 3"},
        {"FILE a WAVE\nTRACK 1 AUDIO\nINDEX 01 -1:00:00\n", "line 3"},
        {"FILE a WAVE\nTRACK 1 AUDIO\nINDEX 01 00:10:00\nTRACK 2 AUDIO\nINDEX 01 00:09:00\n", "line 5"},
        {"FILE a WAVE\nTRACK 1 AUDIO\nINDEX 01 00:00:00\nTRACK 1 AUDIO\nINDEX 01 00:09:00\n", "line 5"},
        {std::string((1 << 20) + 1, '\n'), "1 MiB"}};
    for (const auto& [bytes, reason] : cases) {
        try {
            static_cast<void>(parse_cue(bytes));
            ADD_FAILURE() << "accepted: " << bytes.substr(0, 100);
        } catch (const cue_error& refused) {
            EXPECT_NE(std::string_view(refused.what()).find(reason), std::string_view::npos) << refused.what();
        }
    }
}

}  // namespace
