#include "player/tags/edit_tags.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "player/tags/asf_header.h"
#include "player/tags/field_names.h"
#include "player/tags/id3_frames.h"
#include "player/tags/reader.h"
#include "player/tags/xiph_comment.h"
#include "tests/player/tags/audio_files.h"

namespace ostrevan::tags {
namespace {

using namespace std::string_literals;
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

bool set_all(file_info_builder& info) {
    for (const auto field : statistics_fields) info.meta_set(field, "13370000000000000" + std::to_string(field.size()));
    info.meta_set("title", "Ein neuer Titel – ほ");
    return true;
}

bool remove_statistics(file_info_builder& info) {
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
        rewrite_file(path.string(), set_all);
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
        rewrite_file(path.string(), remove_statistics);
        const auto info = read_file(path.string());
        for (const auto field : statistics_fields) EXPECT_FALSE(info.meta_exists(field)) << path << field;
    }
    for (auto& [path, entries] : entries_of(paths)) {
        EXPECT_EQ(lost(before[path], entries, edited_fields), std::vector<std::string>{}) << path;
        for (const auto& entry : entries) EXPECT_EQ(ascii_upper(entry).find("PLAY_COUNT"), entry.npos) << path << entry;
    }
    EXPECT_EQ(sounds_of(paths), sounds);
}

TEST_F(edit_tags_in_files, hold_ordinary_fields_numbers_and_several_values) {
    const auto edit = [](file_info_builder& info) {
        info.meta_set("ALBUMARTIST", "New Hands");
        info.meta_set("TRACKNUMBER", "4/7");
        info.meta_set("totaldiscs", "9");
        info.meta_set("date", "2001");
        info.meta_set("my field", "mine");
        info.meta_set_values("artist", {"One", "Two", "Three"});
        info.meta_remove_field("genre");
        return true;
    };
    for (const auto& path : copy_all()) {
        SCOPED_TRACE(path);
        rewrite_file(path.string(), edit);
        const auto info = read_file(path.string());
        for (const auto& [field, value] : {std::pair{"album artist", "New Hands"},
                                           {"tracknumber", "4"},
                                           {"totaltracks", "7"},
                                           {"totaldiscs", "9"},
                                           {"my field", "mine"},
                                           {"genre", "(none)"}})
            EXPECT_EQ(first_value(info, field), value);
        EXPECT_EQ(info.meta_values(info.meta_find("artist")), (std::vector<std::string>{"One", "Two", "Three"}));
        EXPECT_EQ(rewrite_file(path.string(), edit).outcome, rewrite_outcome::unchanged);
    }
}

TEST_F(edit_tags_in_files, grow_and_shrink_without_touching_the_sound) {
    auto paths = copy_all();
    const auto ordinary = paths;
    const auto plain = bytes_of(folder_ / "vorbis.ogg"), foreign = bytes_of(folder_ / "speex.spx").substr(0, 108);
    const auto add = [&](const char* name, const std::string& bytes) {
        put_bytes(folder_ / name, bytes);
        paths.push_back(folder_ / name);
    };
    // Streams after one another; a page of another stream between those of a comment; a page that decoders drop.
    std::string chained = plain, mixed = bytes_of(folder_ / "rich-vorbis.ogg"), torn = plain;
    while (chained.size() < 3 << 20) chained += plain;
    add("chained.ogg", chained);
    add("mixed.ogg", mixed.insert(mixed.find("OggS", 30000), foreign));
    torn.back() ^= 1;
    add("torn.ogg", torn);
    // Sound in front of the tags, and something after them.
    add("before.m4a", bytes_of(folder_ / "aac.m4a") + "\0\0\0\x08"s + "free");
    const auto sounds = sounds_of(ordinary);
    std::map<fs::path, std::uint64_t> marks;
    for (const auto& path : paths) {
        marks[path] = read_audio(path.string()).sound;
        rewrite_file(path.string(), set_field("lyrics", std::string(300001, 'x')));
    }
    for (const auto* name : {"pcm.wav", "rich-pcm.aiff"}) EXPECT_EQ(fs::file_size(folder_ / name) % 2, 0u) << name;
    EXPECT_TRUE(bytes_of(folder_ / "chained.ogg").ends_with(plain));
    EXPECT_NE(bytes_of(folder_ / "mixed.ogg").find(foreign), std::string::npos);
    EXPECT_EQ(sounds_of(ordinary), sounds);
    for (const auto& path : paths) {
        // Room that an edit leaves is used by the next.
        const auto size = fs::file_size(path);
        rewrite_file(path.string(), set_field("lyrics", std::string(300101, 'x')));
        EXPECT_LE(fs::file_size(path), size + 200) << path;
        rewrite_file(path.string(), [](file_info_builder& info) { return info.meta_remove_field("lyrics"); });
        EXPECT_EQ(read_audio(path.string()).sound, marks[path]) << path;
    }
    EXPECT_EQ(sounds_of(ordinary), sounds);
}

TEST_F(edit_tags_in_files, say_what_a_format_cannot_hold_and_what_is_damaged) {
    struct refusal {
        const char* file;
        const char* field;
        std::string value;
        const char* reason;
        harm damage = {};
    };
    const refusal cases[] = {
        {"flac.flac", "what=ever", "x", "Vorbis comments cannot hold the field \"what=ever\""},
        {"flac.flac", "lyrics", std::string(17u << 20, 'x'), "16 MB"},
        {"ape.ape", "q", "x", "APEv2 cannot hold the field \"q\""},
        {"id3v23.mp3", "date", "2001-05", "cannot hold this value of the field \"date\""},
        {"aac.m4a", "tracknumber", "A1", "cannot hold this value of the field \"tracknumber\""},
        {"vorbis.ogg", "title", "", "remove the field instead"},
        {"id3v23.mp3", "", "x", "a field needs a name"},
        {"faststart.m4a", "lyrics", std::string(9000, 'x'), "table of offsets is damaged", {"stco", 11, 1}},
        {"fragments.m4a", "lyrics", std::string(9000, 'x'), "table of offsets is damaged", {"\x24tfhd", 0, -20}},
        {"pcm.wav", "title", "x", "announces more data than there is", {"RIFF", 6, 1}},
        {"opus.opus", "title", "x", "has no known length", {"OggS", 13, -128}},
        {"ape.ape", "title", "x", "more than 5,000 entries", {"APETAGEX", 17, 20}},
        {"wma.wma", "title", "x", "more than 5,000 entries", {"\x40\xA4\xD0\xD2", 25, 20}}};
    for (const auto& each : cases) {
        const auto path = copy(each.file);
        const auto bytes = each.damage(bytes_of(path));
        put_bytes(path, bytes);
        const auto message = refusal_of(path, set_field(each.field, each.value));
        EXPECT_NE(message.find(each.reason), message.npos) << message;
        EXPECT_TRUE(message.starts_with(path.string())) << message;
        EXPECT_EQ(bytes_of(path), bytes) << each.file;
    }
    EXPECT_EQ(files_in_folder(), 10u);
}

TEST_F(edit_tags_in_files, bring_repeated_windows_media_objects_together_and_keep_long_names) {
    auto header = take_apart_asf(bytes_of(copy("rich-wma.wma")));
    const auto count = header.attributes.size();
    header.attributes.push_back({asf_place::library, "W", asf_type::text, "x", "0000", std::string(65534, 'W')});
    const auto objects = header.objects;
    header.objects.insert(header.objects.end(), objects.begin(), objects.end());
    const auto merged = take_apart_asf(put_together_asf(header, header.size));
    ASSERT_EQ(merged.attributes.size(), count + 1);
    EXPECT_EQ(merged.attributes.back().name_bytes.size(), 65534u);
}

std::string id3_header(char version, char flags, std::size_t size) {
    return std::string("ID3") + version + '\0' + flags + std::string(2, '\0') + static_cast<char>(size >> 7 & 0x7F) +
           static_cast<char>(size & 0x7F);
}

TEST(edit_id3v2, keeps_frames_byte_for_byte_in_every_version_and_layout) {
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
        {with_header(4, '\x80', "XYZ1\0\0\0\3\0\2\xFF\0\1"s + text23), "XYZ1\0\0\0\3\0\2\xFF\0\1"s, "TIT2"s}};
    for (const auto& each : layouts) {
        const auto edited = edit_id3v2(each.tag, change, tag_role::primary);
        EXPECT_EQ(edited[3], each.tag[3]);
        EXPECT_NE(edited.find(each.kept), edited.npos);
        EXPECT_NE(edited.find(each.written), edited.npos);
        EXPECT_EQ(edited.find("old"), edited.npos);
    }
}

TEST(edit_id3v2, keeps_the_languages_of_comments_and_lyrics) {
    const auto frames = "COMM\0\0\0\x08\0\0\0deu\0old"s + "USLT\0\0\0\x08\0\0\0fra\0old"s;
    const auto edited =
        edit_id3v2(id3_header(4, 0, frames.size()) + frames,
                   {{"comment", {"COMMENT"}, {{"COMMENT", {"new"}}}}, {"lyrics", {"LYRICS"}, {{"LYRICS", {"new"}}}}},
                   tag_role::primary);
    for (const auto* language : {"deu", "fra"}) EXPECT_NE(edited.find(language), edited.npos) << language;
    EXPECT_EQ(edited.find("old"), edited.npos);
}

TEST(edit_id3v2, drops_nothing_but_the_one_role_from_a_list_of_people) {
    const auto people =
        edit_id3v2("", {{"producer", {"PRODUCER"}, {{"PRODUCER", {"Mary"}}}}, {"mixer", {"MIXER"}, {{"MIXER", {"Luigi"}}}}},
                   tag_role::primary);
    const auto edited = edit_id3v2(people, {{"producer", {"PRODUCER"}, {}}}, tag_role::primary);
    EXPECT_EQ(edited.find("Mary"), edited.npos);
    EXPECT_NE(edited.find("Luigi"), edited.npos);
}

TEST(edit_ape, keeps_every_item_and_says_where_the_tag_begins) {
    const auto end = [](char flags) { return "APETAGEX\xD0\7\0\0\x3C\0\0\0\2\0\0\0\0\0\0"s + flags + std::string(8, '\0'); };
    const auto old = "\1\0\0\0\1\0\0\0Zed\0\xE9"s, title = "\1\0\0\0\0\0\0\0tItle\0"s;
    const auto tag_with = [&](const std::string& text) { return end('\xA0') + old + title + text + end('\x80'); };
    const tag_changes changes = {{"title", {"TITLE"}, {{"TITLE", {"n"}}}}, {"rating", {"RATING"}, {{"RATING", {"5"}}}}};
    EXPECT_EQ(edit_ape(tag_with("o"), changes, tag_role::other), tag_with("n"));
}

TEST(edit_xiph, keeps_order_spelling_and_what_follows_the_entries) {
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
