// The library's own saving drops the frames that version 2.4 has no more (RVAD, TSIZ), drops or empties those with flags,
// writes every text anew, and makes version 2.4 of 2.2.
#include <id3v2header.h>
#include <id3v2tag.h>
#include <tpropertymap.h>

#include <algorithm>
#include <memory>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/id3_frames.h"
#include "player/tags/limited_frames.h"

namespace ostrevan::tags {
namespace {

namespace ID3v2 = TagLib::ID3v2;

constexpr unsigned version_of_new_tags = 4;
constexpr std::size_t tag_header_size = 10;

/// Parts of the date before version 2.4, which reading brings together into one field.
constexpr std::string_view date_frames[] = {"TYER", "TDAT", "TIME", "TRDA", "TYE", "TDA", "TIM", "TRD"};

/// Frames of version 2.3 and their names in version 2.2, whose texts are the same.
constexpr std::string_view short_ids[][2] = {
    {"TIT1", "TT1"}, {"TIT2", "TT2"}, {"TIT3", "TT3"}, {"TPE1", "TP1"}, {"TPE2", "TP2"}, {"TPE3", "TP3"}, {"TPE4", "TP4"},
    {"TALB", "TAL"}, {"TYER", "TYE"}, {"TDAT", "TDA"}, {"TIME", "TIM"}, {"TRCK", "TRK"}, {"TPOS", "TPA"}, {"TCON", "TCO"},
    {"TCOM", "TCM"}, {"TEXT", "TXT"}, {"TENC", "TEN"}, {"TBPM", "TBP"}, {"TCOP", "TCR"}, {"TPUB", "TPB"}, {"TSRC", "TRC"},
    {"TKEY", "TKE"}, {"TLAN", "TLA"}, {"TXXX", "TXX"}, {"COMM", "COM"}, {"USLT", "ULT"}, {"WXXX", "WXX"}, {"IPLS", "IPL"}};

std::string header_bytes(const id3_frames& tag) {
    return std::string("ID3") + static_cast<char>(tag.version) + '\0' + (tag.unsynchronised ? '\x80' : '\0') +
           std::string(4, '\0');
}

/// The entries that one frame makes in a property map.
TagLib::PropertyMap properties_of(const id3_frame& frame, const id3_frames& tag) {
    ID3v2::Header header(to_vector(header_bytes(tag)));
    ID3v2::Tag alone;
    const limited_frames frames;
    if (auto* decoded = frames.createFrame(to_vector(frame_bytes(frame, tag.version)), &header)) alone.addFrame(decoded);
    return alone.properties();
}

/// The frames that hold the entries, as the version writes them.
std::vector<id3_frame> frames_of(const TagLib::PropertyMap& properties, unsigned version) {
    ID3v2::Tag alone;
    const auto rejected = alone.setProperties(properties);
    if (!rejected.isEmpty()) cannot_hold("ID3v2", rejected.begin()->first.to8Bit(true), "its name is not allowed there");
    const auto rendered = alone.render(version == 4 ? ID3v2::v4 : ID3v2::v3);
    auto frames = take_apart_id3({rendered.data(), rendered.size()}).frames;
    if (version == 2)
        for (auto& frame : frames) {
            const auto* found = std::ranges::find(short_ids, frame.id, [](const auto& pair) { return pair[0]; });
            if (found == std::end(short_ids)) cannot_hold("ID3v2.2", frame.id, "that version has no such frame");
            frame.id = (*found)[1];
            frame.flags.clear();
        }
    return frames;
}

bool has_language(const id3_frame& frame) {
    return (frame.id == "COMM" || frame.id == "USLT" || frame.id == "COM" || frame.id == "ULT") && frame.body.size() >= 4;
}

/// Removes the entries of the changes from the tag. Returns for each change whether the tag held anything of it.
std::vector<bool> remove_entries(id3_frames& tag, const tag_changes& changes, std::vector<id3_frame>& removed) {
    std::vector<bool> held(changes.size(), false);
    std::vector<id3_frame> kept;
    for (auto& frame : tag.frames) {
        auto remaining = properties_of(frame, tag);
        const auto entries = remaining.size();
        for (std::size_t i = 0; i < changes.size(); ++i) {
            for (const auto& key : changes[i].keys)
                if (const TagLib::String name(key, TagLib::String::UTF8); remaining.contains(name)) {
                    remaining.erase(name);
                    held[i] = true;
                }
            if (changes[i].field == "date" && std::ranges::find(date_frames, frame.id) != std::end(date_frames)) {
                removed.push_back(frame);
                frame.id.clear();
                break;
            }
        }
        if (frame.id.empty()) continue;
        if (remaining.size() == entries) {
            kept.push_back(std::move(frame));
            continue;
        }
        // A list of people holds several fields in one frame: the others stay.
        if (!remaining.isEmpty())
            for (auto& rest : frames_of(remaining, tag.version)) kept.push_back(std::move(rest));
        removed.push_back(std::move(frame));
    }
    tag.frames = std::move(kept);
    return held;
}

}  // namespace

std::string edit_id3v2(const std::string& bytes, const tag_changes& changes, tag_role role) {
    id3_frames tag;
    tag.version = version_of_new_tags;
    if (!bytes.empty()) tag = take_apart_id3(bytes);
    std::vector<id3_frame> removed;
    const auto held = remove_entries(tag, changes, removed);
    TagLib::PropertyMap written;
    for (std::size_t i = 0; i < changes.size(); ++i)
        if (role == tag_role::primary || held[i])
            for (const auto& [key, values] : changes[i].writes) {
                TagLib::StringList list;
                for (const auto& value : values) list.append(TagLib::String(value, TagLib::String::UTF8));
                written.insert(TagLib::String(key, TagLib::String::UTF8), list);
            }
    if (removed.empty() && written.isEmpty()) return bytes;
    for (auto& frame : frames_of(written, tag.version)) {
        const auto old = std::ranges::find(removed, frame.id, &id3_frame::id);
        if (old != removed.end() && has_language(frame) && has_language(*old)) frame.body.replace(1, 3, old->body, 1, 3);
        tag.frames.push_back(std::move(frame));
    }
    return put_together_id3(tag, bytes.size());
}

void edit_id3v2_in_front(file_stream& stream, const tag_changes& changes, tag_role role) {
    const std::string head = read_bytes(stream, 0, tag_header_size);
    std::string old;
    if (head.starts_with("ID3") && head.size() == tag_header_size)
        old = read_bytes(stream, 0, ID3v2::Header(to_vector(head)).completeTagSize());
    else if (role == tag_role::other) return;
    const std::string edited = edit_id3v2(old, changes, role);
    if (edited != old) replace_bytes(stream, edited, 0, old.size());
}

}  // namespace ostrevan::tags
