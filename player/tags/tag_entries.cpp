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

/// The library keeps this for its own frames.
struct frame_reader : ID3v2::Frame {
    static TagLib::PropertyMap properties_of(const Frame& frame) { return (frame.*(&frame_reader::asProperties))(); }
};

/// Frames that never are fields, and the largest.
constexpr std::string_view no_fields[] = {"APIC", "PRIV", "POPM", "GEOB", "MCDI", "CHAP", "CTOC", "RVA2"};

template <class List>
void append(tag_entries& entries, std::string_view key, const List& texts) {
    auto& values = values_for(entries, key);
    for (const auto& text : texts) values.push_back(text.to8Bit(true));
}

void append_properties(tag_entries& entries, const TagLib::PropertyMap& properties) {
    for (const auto& [key, texts] : properties) append(entries, key.to8Bit(true), texts);
}

void append_frame(tag_entries& entries, const ID3v2::Frame& frame) {
    const auto id = frame.frameID();
    if (std::ranges::find(no_fields, std::string_view(id.data(), id.size())) != std::end(no_fields)) return;
    append_properties(entries, frame_reader::properties_of(frame));
}

void append_items(tag_entries& entries, const TagLib::APE::Tag& tag) {
    for (const auto& [name, item] : tag.itemListMap())
        if (item.type() == TagLib::APE::Item::Text) append(entries, key_of_ape_item(name.to8Bit(true)), item.values());
}

}  // namespace

std::vector<std::string>& values_for(tag_entries& entries, std::string_view key) {
    const auto found = std::ranges::find(entries, key, [](const auto& entry) { return std::string_view(entry.first); });
    if (found != entries.end()) return found->second;
    return entries.emplace_back(std::string(key), std::vector<std::string>()).second;
}

tag_entries entries_of(const TagLib::Tag& tag) {
    tag_entries entries;
    if (const auto* id3 = dynamic_cast<const ID3v2::Tag*>(&tag)) {
        for (const auto* frame : id3->frameList()) append_frame(entries, *frame);
    } else if (const auto* xiph = dynamic_cast<const TagLib::Ogg::XiphComment*>(&tag)) {
        for (const auto& [key, texts] : xiph->fieldListMap()) append(entries, key.to8Bit(true), texts);
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
