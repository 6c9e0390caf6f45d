#include "player/tags/edit_bytes.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "player/tags/field_names.h"
#include "player/tags/id3_frames.h"
#include "player/tags/reader.h"
#include "tests/player/tags/audio_files.h"

namespace ostrevan::tags {
namespace {

using edit_tags_in_files = audio_files;

/// All that an independent reader sees in each file: container, name and value of every entry, repeated ones told apart.
std::map<fs::path, std::set<std::string>> entries_of(const std::vector<fs::path>& paths) {
    const auto all = nlohmann::json::parse(output_of(MUTAGEN_PYTHON " " FIXTURE_SCRIPTS "/show_tags.py" + quoted(paths)));
    std::map<fs::path, std::set<std::string>> result;
    for (const auto& [path, tags] : all.items())
        for (const auto& [container, content] : tags.items())
            for (const auto& entry : content.is_array() ? content : nlohmann::json::array({content})) {
                std::string text = container + " " + entry.dump();
                while (!result[path].insert(text).second) text += " again";
            }
    return result;
}

/// The entries of `from` that `other` lacks and that are not about one of the fields.
std::vector<std::string> lost(const std::set<std::string>& from, const std::set<std::string>& other,
                              const std::vector<std::string>& fields) {
    std::vector<std::string> result;
    for (const auto& entry : from) {
        const auto upper = ascii_upper(entry);
        const bool about_field =
            std::ranges::any_of(fields, [&](auto field) { return upper.find(ascii_upper(field)) != upper.npos; });
        if (!other.contains(entry) && !about_field) result.push_back(entry);
    }
    return result;
}

bool set_all(file_info& info) {
    for (const auto field : statistics_fields) info.meta_set(field, "13370000000000000" + std::to_string(field.size()));
    info.meta_set("title", "Ein neuer Titel – ほ");
    return true;
}

bool remove_statistics(file_info& info) {
    for (const auto field : statistics_fields) info.meta_remove_field(field);
    return true;
}

TEST_F(edit_tags_in_files, hold_statistics_and_title_and_nothing_else_changes) {
    const std::vector<std::string> edited_fields = {"title",        "nam",        "TIT2",       "last_played",
                                                    "first_played", "added_time", "play_count", "play_counter",
                                                    "rating",       "playback_",  "blocks"};
    const auto paths = copy_all();
    const auto sounds = sounds_of(paths);
    auto before = entries_of(paths);
    for (const auto& path : paths) {
        ASSERT_EQ(rewrite_file(path.string(), set_all).outcome, rewrite_outcome::rewritten) << path;
        const auto info = read_file(path.string());
        for (const auto field : statistics_fields)
            EXPECT_EQ(first_value(info, field), "13370000000000000" + std::to_string(field.size())) << path;
        EXPECT_EQ(first_value(info, "title"), "Ein neuer Titel – ほ") << path;
    }
    auto edited = entries_of(paths);
    for (const auto& path : paths) {
        EXPECT_EQ(lost(before[path], edited[path], edited_fields), std::vector<std::string>{}) << path;
        // The first ID3v2 tag of a WAV file takes the fields of INFO over.
        if (path.filename() == "pcm.wav") continue;
        EXPECT_EQ(lost(edited[path], before[path], edited_fields), std::vector<std::string>{}) << path;
    }
    EXPECT_EQ(sounds_of(paths), sounds);

    for (const auto& path : paths) {
        ASSERT_EQ(rewrite_file(path.string(), remove_statistics).outcome, rewrite_outcome::rewritten) << path;
        const auto info = read_file(path.string());
        for (const auto field : statistics_fields) EXPECT_FALSE(info.meta_exists(field)) << path << field;
    }
    edited = entries_of(paths);
    for (const auto& path : paths) {
        EXPECT_EQ(lost(before[path], edited[path], edited_fields), std::vector<std::string>{}) << path;
        for (const auto& entry : edited[path]) EXPECT_EQ(ascii_upper(entry).find("PLAY_COUNT"), entry.npos) << path << entry;
    }
    EXPECT_EQ(sounds_of(paths), sounds);
}

TEST_F(edit_tags_in_files, hold_ordinary_fields_numbers_and_several_values) {
    const auto edit = [](file_info& info) {
        info.meta_set("ALBUMARTIST", "New Hands");
        info.meta_set("tracknumber", "4");
        info.meta_set("totaldiscs", "9");
        info.meta_set("date", "2001");
        info.meta_set("my field", "mine");
        info.meta_set_values("artist", {"One", "Two", "Three"});
        info.meta_remove_field("genre");
        return true;
    };
    for (const auto& path : copy_all()) {
        SCOPED_TRACE(path);
        const auto length = read_file(path.string()).length();
        rewrite_file(path.string(), edit);
        const auto info = read_file(path.string());
        EXPECT_EQ(first_value(info, "album artist"), "New Hands");
        EXPECT_EQ(first_value(info, "tracknumber"), "4");
        EXPECT_EQ(first_value(info, "totaldiscs"), "9");
        EXPECT_EQ(first_value(info, "my field"), "mine");
        EXPECT_EQ(first_value(info, "genre"), "(none)");
        EXPECT_EQ(info.meta_values(info.meta_find("artist")), (std::vector<std::string>{"One", "Two", "Three"}));
        EXPECT_EQ(info.length(), length);
    }
}

TEST_F(edit_tags_in_files, grow_and_shrink_without_touching_the_sound) {
    const std::string large(300000, 'x');
    const auto paths = copy_all();
    const auto sounds = sounds_of(paths);
    for (const auto& path : paths) {
        rewrite_file(path.string(), set_field("lyrics", large));
        EXPECT_EQ(first_value(read_file(path.string()), "lyrics"), large) << path;
    }
    EXPECT_EQ(sounds_of(paths), sounds);
    for (const auto& path : paths) {
        rewrite_file(path.string(), [](file_info& info) { return info.meta_remove_field("lyrics"); });
        EXPECT_FALSE(read_file(path.string()).meta_exists("lyrics")) << path;
    }
    EXPECT_EQ(sounds_of(paths), sounds);
}

TEST_F(edit_tags_in_files, say_what_a_format_cannot_hold) {
    struct refusal {
        const char* file;
        const char* field;
        std::string value;
        const char* reason;
    };
    const refusal cases[] = {
        {"flac.flac", "what=ever", "x", "Vorbis comments cannot hold the field \"what=ever\""},
        {"flac.flac", "lyrics", std::string(17u << 20, 'x'), "16 MB"},
        {"ape.ape", "q", "x", "APEv2 cannot hold the field \"q\""},
        {"id3v23.mp3", "date", "2001-05", "cannot hold this value of the field \"date\""},
        {"aac.m4a", "tracknumber", "A1", "cannot hold this value of the field \"tracknumber\""},
        {"vorbis.ogg", "title", "", "remove the field instead"},
    };
    for (const auto& each : cases) {
        const auto path = copy(each.file);
        const auto message = message_of([&] { rewrite_file(path.string(), set_field(each.field, each.value)); });
        EXPECT_NE(message.find(each.reason), message.npos) << message;
        EXPECT_TRUE(message.starts_with(path.string())) << message;
        EXPECT_EQ(bytes_of(path), bytes_of(fs::path(AUDIO_FIXTURES) / each.file)) << each.file;
    }
    EXPECT_EQ(files_in_folder(), 5u);
}

TEST_F(edit_tags_in_files, leave_a_file_with_equal_fields_alone) {
    const auto path = copy("flac.flac");
    const auto inode = output_of("stat -c %i " + path.string());
    const auto same = rewrite_file(path.string(), [](file_info& info) {
        info.meta_set("TRACKNUMBER", "3/12");
        return true;
    });
    EXPECT_EQ(same.outcome, rewrite_outcome::unchanged);
    EXPECT_EQ(output_of("stat -c %i " + path.string()), inode);
}

std::string id3_header(char version, char flags, std::size_t size) {
    return std::string("ID3") + version + '\0' + flags + std::string(2, '\0') + static_cast<char>(size >> 7 & 0x7F) +
           static_cast<char>(size & 0x7F);
}

TEST(edit_id3v2, keeps_frames_byte_for_byte_in_every_version_and_layout) {
    using namespace std::string_literals;
    const auto text23 = "TIT2\0\0\0\4\0\0\0old"s, unknown23 = "XYZ1\0\0\0\3\x40\x20\1\2\3"s;
    const auto text22 = "TT2\0\0\4\0old"s, unknown22 = "XYZ\0\0\2\1\2"s;
    const auto extended23 = "\0\0\0\6\0\0\0\0\0\0"s;
    const auto unsynchronised23 = "PRIV\0\0\0\4\0\0\xFF\0\xE0\0\7"s;  // a body of FF E0 00 07 with the zero put in
    const tag_changes change = {{"title", {"TITLE"}, {{"TITLE", {"new"}}}}};
    struct layout {
        std::string tag;
        std::string kept;
        std::string written;
    };
    const auto with_header = [](char version, char flags, const std::string& body) {
        return id3_header(version, flags, body.size()) + body;
    };
    const layout layouts[] = {
        {with_header(3, 0, text23 + unknown23), unknown23, "TIT2"s},
        {with_header(3, 0x40, extended23 + unknown23 + text23), unknown23, "TIT2"s},
        {with_header(3, '\x80', unsynchronised23 + text23), "PRIV\0\0\0\4\0\0\xFF\xE0\0\7"s, "TIT2"s},
        {with_header(2, 0, text22 + unknown22), unknown22, "TT2"s},
        {with_header(4, '\x80', "XYZ1\0\0\0\3\0\2\xFF\0\1"s + text23), "XYZ1\0\0\0\3\0\2\xFF\0\1"s, "TIT2"s},
    };
    for (const auto& each : layouts) {
        const auto edited = edit_id3v2(each.tag, change, tag_role::primary);
        EXPECT_EQ(edited[3], each.tag[3]);
        EXPECT_NE(edited.find(each.kept), edited.npos);
        EXPECT_NE(edited.find(each.written), edited.npos);
        EXPECT_EQ(edited.find("old"), edited.npos);
    }
}

TEST(edit_id3v2, drops_nothing_but_the_one_role_from_a_list_of_people) {
    const auto people =
        edit_id3v2("", {{"producer", {"PRODUCER"}, {{"PRODUCER", {"Mary"}}}}, {"mixer", {"MIXER"}, {{"MIXER", {"Luigi"}}}}},
                   tag_role::primary);
    const auto edited = edit_id3v2(people, {{"producer", {"PRODUCER"}, {}}}, tag_role::primary);
    EXPECT_EQ(edited.find("Mary"), edited.npos);
    EXPECT_NE(edited.find("Luigi"), edited.npos);
}

TEST(edit_xiph, keeps_order_spelling_and_what_follows_the_entries) {
    using namespace std::string_literals;
    const auto entry = [](const std::string& text) {
        return std::string(1, static_cast<char>(text.size())) + "\0\0\0"s + text;
    };
    const auto comment = "\3\0\0\0abc\4\0\0\0"s + entry("Album_Artist=x") + entry("no equals") + entry("RATING=1") +
                         entry("rating=2") + "\1extra";
    const tag_changes changes = {{"album artist", keys_of_field("album artist"), {{"ALBUMARTIST", {"y"}}}},
                                 {"rating", {"RATING"}, {}}};
    EXPECT_EQ(edit_xiph(comment, changes),
              "\3\0\0\0abc\2\0\0\0"s + entry("Album_Artist=y") + entry("no equals") + "\1extra");
}

}  // namespace
}  // namespace ostrevan::tags
