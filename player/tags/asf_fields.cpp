#include "player/tags/asf_fields.h"

#include <algorithm>

#include "nuv/text.h"
#include "player/tags/asf_header.h"
#include "player/tags/bytes.h"
#include "player/tags/changes.h"
#include "player/tags/errors.h"
#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

/// Customary attributes and the keys that the other formats use for the same.
constexpr std::string_view asf_names[][2] = {
    {"Title", "TITLE"},
    {"Author", "ARTIST"},
    {"Description", "COMMENT"},
    {"Copyright", "COPYRIGHT"},
    {"WM/AlbumTitle", "ALBUM"},
    {"WM/AlbumArtist", "ALBUMARTIST"},
    {"WM/AlbumArtistSortOrder", "ALBUMARTISTSORT"},
    {"WM/AlbumSortOrder", "ALBUMSORT"},
    {"WM/ArtistSortOrder", "ARTISTSORT"},
    {"WM/TitleSortOrder", "TITLESORT"},
    {"WM/Barcode", "BARCODE"},
    {"WM/BeatsPerMinute", "BPM"},
    {"WM/CatalogNo", "CATALOGNUMBER"},
    {"WM/Composer", "COMPOSER"},
    {"WM/Conductor", "CONDUCTOR"},
    {"WM/ContentGroupDescription", "GROUPING"},
    {"WM/EncodedBy", "ENCODEDBY"},
    {"WM/Genre", "GENRE"},
    {"WM/InitialKey", "INITIALKEY"},
    {"WM/ISRC", "ISRC"},
    {"WM/IsCompilation", "COMPILATION"},
    {"WM/Language", "LANGUAGE"},
    {"WM/Lyrics", "LYRICS"},
    {"WM/Media", "MEDIA"},
    {"WM/ModifiedBy", "REMIXER"},
    {"WM/Mood", "MOOD"},
    {"WM/OriginalReleaseYear", "ORIGINALDATE"},
    {"WM/PartOfSet", "DISCNUMBER"},
    {"WM/Producer", "PRODUCER"},
    {"WM/Publisher", "LABEL"},
    {"WM/Script", "SCRIPT"},
    {"WM/SetSubTitle", "DISCSUBTITLE"},
    {"WM/SubTitle", "SUBTITLE"},
    {"WM/TrackNumber", "TRACKNUMBER"},
    {"WM/Writer", "LYRICIST"},
    {"WM/Year", "DATE"},
    {"MusicBrainz/Track Id", "MUSICBRAINZ_TRACKID"},
    {"MusicBrainz/Artist Id", "MUSICBRAINZ_ARTISTID"},
    {"MusicBrainz/Album Id", "MUSICBRAINZ_ALBUMID"},
    {"MusicBrainz/Album Artist Id", "MUSICBRAINZ_ALBUMARTISTID"},
    {"MusicBrainz/Release Group Id", "MUSICBRAINZ_RELEASEGROUPID"},
};

/// Beginnings of names that programs use for themselves; "Rating" of the content description is about age.
constexpr std::string_view technical[] = {"WM/",          "WMFSDK",        "IsVBR", "DeviceConformanceTemplate",
                                          "MusicBrainz/", "ASFLeakyBucket"};

std::string text_of(const asf_attribute& attribute) {
    switch (attribute.type) {
        case asf_type::text:
            return asf_text(attribute.value);
        case asf_type::boolean:
            return little_endian(attribute.value, 0, attribute.value.size()) != 0 ? "1" : "0";
        case asf_type::number16:
        case asf_type::number32:
        case asf_type::number64:
            return std::to_string(little_endian(attribute.value, 0, std::min<std::size_t>(8, attribute.value.size())));
        default:
            return {};  // pictures and other bytes
    }
}

}  // namespace

std::string key_of_asf_name(const std::string& name) {
    for (const auto& pair : asf_names)
        if (nuv::equal_ascii_nocase(pair[0], name)) return std::string(pair[1]);
    const bool hidden = std::ranges::any_of(technical, [&](auto start) { return name.starts_with(start); });
    return hidden ? std::string() : ascii_upper(name);
}

std::string asf_name_of_key(const std::string& key) {
    for (const auto& pair : asf_names)
        if (pair[1] == key) return std::string(pair[0]);
    return key;
}

void add_asf_fields(file_stream& stream, file_info_builder& info) try {
    std::vector<std::pair<std::string, std::vector<std::string>>> entries;
    for (const auto& attribute : read_asf_header(stream).attributes) {
        const bool age_rating = attribute.place == asf_place::description && attribute.name == "Rating";
        const auto key = age_rating ? std::string() : key_of_asf_name(attribute.name);
        const auto text = text_of(attribute);
        if (key.empty() || text.empty()) continue;
        auto entry = std::ranges::find(entries, key, [](const auto& each) { return each.first; });
        if (entry == entries.end()) entry = entries.insert(entry, {key, {}});
        // Encoders write the texts of the content description a second time as attributes.
        if (std::ranges::find(entry->second, text) == entry->second.end()) entry->second.push_back(text);
    }
    for (auto& [key, values] : entries) add_entry(key, std::move(values), info);
} catch (const edit_error&) {
    // A file without readable fields still has its sound.
}

}  // namespace ostrevan::tags
