#include "player/tags/tag_entries.h"

#include <apetag.h>
#include <commentsframe.h>
#include <id3v1genres.h>
#include <id3v2tag.h>
#include <mp4tag.h>
#include <podcastframe.h>
#include <textidentificationframe.h>
#include <tpropertymap.h>
#include <uniquefileidentifierframe.h>
#include <unsynchronizedlyricsframe.h>
#include <urllinkframe.h>
#include <xiphcomment.h>

#include <algorithm>

#include "player/tags/field_names.h"
#include "player/tags/freeform.h"

namespace ostrevan::tags {
namespace {

namespace ID3v2 = TagLib::ID3v2;

/// Text frames that hold one field, sorted by identifier. The parts of a date before version 2.4 are left to the library.
constexpr std::string_view text_frames[][2] = {{"TALB", "ALBUM"},
                                               {"TBPM", "BPM"},
                                               {"TCAT", "PODCASTCATEGORY"},
                                               {"TCMP", "COMPILATION"},
                                               {"TCOM", "COMPOSER"},
                                               {"TCON", "GENRE"},
                                               {"TCOP", "COPYRIGHT"},
                                               {"TDEN", "ENCODINGTIME"},
                                               {"TDES", "PODCASTDESC"},
                                               {"TDLY", "PLAYLISTDELAY"},
                                               {"TDOR", "ORIGINALDATE"},
                                               {"TDRC", "DATE"},
                                               {"TDRL", "RELEASEDATE"},
                                               {"TDTG", "TAGGINGDATE"},
                                               {"TENC", "ENCODEDBY"},
                                               {"TEXT", "LYRICIST"},
                                               {"TFLT", "FILETYPE"},
                                               {"TGID", "PODCASTID"},
                                               {"TIT1", "WORK"},
                                               {"TIT2", "TITLE"},
                                               {"TIT3", "SUBTITLE"},
                                               {"TKEY", "INITIALKEY"},
                                               {"TLAN", "LANGUAGE"},
                                               {"TLEN", "LENGTH"},
                                               {"TMED", "MEDIA"},
                                               {"TMOO", "MOOD"},
                                               {"TOAL", "ORIGINALALBUM"},
                                               {"TOFN", "ORIGINALFILENAME"},
                                               {"TOLY", "ORIGINALLYRICIST"},
                                               {"TOPE", "ORIGINALARTIST"},
                                               {"TOWN", "OWNER"},
                                               {"TPE1", "ARTIST"},
                                               {"TPE2", "ALBUMARTIST"},
                                               {"TPE3", "CONDUCTOR"},
                                               {"TPE4", "REMIXER"},
                                               {"TPOS", "DISCNUMBER"},
                                               {"TPRO", "PRODUCEDNOTICE"},
                                               {"TPUB", "LABEL"},
                                               {"TRCK", "TRACKNUMBER"},
                                               {"TRSN", "RADIOSTATION"},
                                               {"TRSO", "RADIOSTATIONOWNER"},
                                               {"TSO2", "ALBUMARTISTSORT"},
                                               {"TSOA", "ALBUMSORT"},
                                               {"TSOC", "COMPOSERSORT"},
                                               {"TSOP", "ARTISTSORT"},
                                               {"TSOT", "TITLESORT"},
                                               {"TSRC", "ISRC"},
                                               {"TSSE", "ENCODING"}};

/// User text frames of these programs have keys of the library's own making.
constexpr std::string_view renamed_user_texts[] = {"MUSICBRAINZ ", "ACOUSTID", "MUSICIP"};

/// Frames that never are fields, and the largest.
constexpr std::string_view no_fields[] = {"APIC", "PRIV", "POPM", "GEOB", "MCDI", "CHAP", "CTOC", "RVA2"};

template <class List>
void append(tag_entries& entries, std::string_view key, const List& texts) {
    auto& values = values_for(entries, key);
    for (const auto& text : texts) values.push_back(to_utf8(text));
}

void append_properties(tag_entries& entries, const TagLib::PropertyMap& properties) {
    for (const auto& [key, texts] : properties) append(entries, to_utf8(key), texts);
}

/// The library's own translation of a frame that is none of the simple ones.
template <class... Frames>
void append_other_frame(tag_entries& entries, const ID3v2::Frame& frame) {
    const auto ask = [&](const auto* exact) {
        if (exact != nullptr) append_properties(entries, exact->asProperties());
        return exact != nullptr;
    };
    (ask(dynamic_cast<const Frames*>(&frame)) || ...);
}

void append_text_frame(tag_entries& entries, std::string_view key, const ID3v2::TextIdentificationFrame& frame) {
    auto& values = values_for(entries, key);
    for (const auto& field : frame.fieldList()) {
        std::string text = to_utf8(field);
        if (key == "GENRE" && !text.empty() && text.find_first_not_of("0123456789") == text.npos && text.size() < 4)
            text = to_utf8(TagLib::ID3v1::genre(std::stoi(text)));
        if (key == "DATE") std::ranges::replace(text, 'T', ' ');
        values.push_back(std::move(text));
    }
}

void append_frame(tag_entries& entries, const ID3v2::Frame& frame) {
    const auto id_bytes = frame.frameID();
    const std::string_view id(id_bytes.data(), id_bytes.size());
    if (std::ranges::find(no_fields, id) != std::end(no_fields)) return;
    const auto* simple = std::ranges::lower_bound(text_frames, id, {}, [](const auto& pair) { return pair[0]; });
    if (simple != std::end(text_frames) && (*simple)[0] == id) {
        if (const auto* text = dynamic_cast<const ID3v2::TextIdentificationFrame*>(&frame))
            append_text_frame(entries, (*simple)[1], *text);
        return;
    }
    if (id == "TXXX")
        if (const auto* user = dynamic_cast<const ID3v2::UserTextIdentificationFrame*>(&frame)) {
            const std::string key = ascii_upper(to_utf8(user->description()));
            const auto renamed = [&](std::string_view start) { return key.starts_with(start); };
            const auto texts = user->fieldList();  // the first is the description
            if (!key.empty() && std::ranges::none_of(renamed_user_texts, renamed) && !texts.isEmpty()) {
                auto& values = values_for(entries, key);
                for (auto text = std::next(texts.begin()); text != texts.end(); ++text) values.push_back(to_utf8(*text));
                return;
            }
        }
    append_other_frame<ID3v2::UserTextIdentificationFrame, ID3v2::TextIdentificationFrame, ID3v2::CommentsFrame,
                       ID3v2::UnsynchronizedLyricsFrame, ID3v2::UserUrlLinkFrame, ID3v2::UrlLinkFrame,
                       ID3v2::UniqueFileIdentifierFrame, ID3v2::PodcastFrame>(entries, frame);
}

void append_items(tag_entries& entries, const TagLib::APE::Tag& tag) {
    for (const auto& [name, item] : tag.itemListMap())
        if (item.type() == TagLib::APE::Item::Text) append(entries, key_of_ape_item(to_utf8(name)), item.values());
}

}  // namespace

std::vector<std::string>& values_for(tag_entries& entries, std::string_view key) {
    const auto found = std::ranges::find(entries, key, [](const auto& entry) { return std::string_view(entry.first); });
    if (found != entries.end()) return found->second;
    return entries.emplace_back(std::string(key), std::vector<std::string>()).second;
}

std::string to_utf8(const TagLib::String& text) {
    std::string result;
    result.reserve(text.size());
    const auto put = [&](unsigned unit) { result += static_cast<char>(unit); };
    for (unsigned i = 0; i < text.size(); ++i) {
        auto unit = static_cast<std::uint32_t>(text[static_cast<int>(i)]) & 0xFFFF;
        const auto next = i + 1 < text.size() ? static_cast<std::uint32_t>(text[static_cast<int>(i) + 1]) & 0xFFFF : 0;
        const bool pair = unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000;
        if (pair) {
            unit = 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        }
        if (unit < 0x80) {
            put(unit);
        } else if (unit < 0x800) {
            put(0xC0 | unit >> 6), put(0x80 | (unit & 0x3F));
        } else if (unit < 0x10000) {
            put(0xE0 | unit >> 12), put(0x80 | (unit >> 6 & 0x3F)), put(0x80 | (unit & 0x3F));
        } else {
            put(0xF0 | unit >> 18), put(0x80 | (unit >> 12 & 0x3F)), put(0x80 | (unit >> 6 & 0x3F)),
                put(0x80 | (unit & 0x3F));
        }
    }
    return result;
}

tag_entries entries_of(const TagLib::Tag& tag) {
    tag_entries entries;
    if (const auto* id3 = dynamic_cast<const ID3v2::Tag*>(&tag)) {
        for (const auto* frame : id3->frameList()) append_frame(entries, *frame);
    } else if (const auto* xiph = dynamic_cast<const TagLib::Ogg::XiphComment*>(&tag)) {
        for (const auto& [key, texts] : xiph->fieldListMap()) append(entries, to_utf8(key), texts);
    } else if (const auto* ape = dynamic_cast<const TagLib::APE::Tag*>(&tag)) {
        append_items(entries, *ape);
    } else if (const auto* mp4 = dynamic_cast<const TagLib::MP4::Tag*>(&tag)) {
        append_properties(entries, mp4->properties());
        for (const auto& [key, texts] : freeform_fields(*mp4)) {
            const bool known =
                std::ranges::find(entries, key, [](const auto& entry) { return entry.first; }) != entries.end();
            if (!known) append(entries, key, texts);
        }
    } else {
        append_properties(entries, tag.properties());
    }
    std::erase_if(entries, [](const auto& entry) { return entry.second.empty(); });
    return entries;
}

}  // namespace ostrevan::tags
