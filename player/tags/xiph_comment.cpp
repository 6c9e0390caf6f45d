// The library's own Vorbis comments are not used to write: they put the entries in the order of their names, write all names
// in capitals, and drop entries without a "=" and texts that are not UTF-8.
#include "player/tags/xiph_comment.h"

#include <xiphcomment.h>

#include <algorithm>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"
#include "player/tags/utf8.h"

namespace ostrevan::tags {
namespace {

constexpr std::string_view picture_names[] = {"METADATA_BLOCK_PICTURE", "COVERART"};

std::string bytes_of(const xiph_comment& parts) {
    std::string bytes = as_little_endian(parts.vendor.size(), 4) + parts.vendor + as_little_endian(parts.entries.size(), 4);
    for (const auto& entry : parts.entries) bytes += as_little_endian(entry.size(), 4) + entry;
    return bytes + parts.rest;
}

std::string name_of_entry(const std::string& entry) {
    const auto equals = entry.find('=');
    return equals == std::string::npos ? std::string() : entry.substr(0, equals);
}

}  // namespace

xiph_comment take_apart_xiph(const std::string& comment) {
    std::size_t at = 0;
    const auto next = [&](std::size_t size) {
        if (size > comment.size() - at) throw edit_error("its comment header is damaged");
        at += size;
        return comment.substr(at - size, size);
    };
    xiph_comment parts;
    if (comment.empty()) return parts;
    parts.vendor = next(little_endian(next(4), 0, 4));
    for (auto count = little_endian(next(4), 0, 4); count > 0; --count)
        parts.entries.push_back(next(little_endian(next(4), 0, 4)));
    parts.rest = comment.substr(at);
    return parts;
}

std::uint64_t entries_stated_by(const std::string& comment) {
    return little_endian(comment, 4 + little_endian(comment, 0, 4), 4);
}

tag_entries entries_of_comment(const std::string& comment) {
    tag_entries entries;
    for (const auto& entry : take_apart_xiph(comment).entries) {
        const auto equals = entry.find('=');
        if (equals == std::string::npos || equals + 1 == entry.size()) continue;
        const std::string key = ascii_upper(std::string_view(entry).substr(0, equals));
        if (std::ranges::find(picture_names, key) != std::end(picture_names)) continue;
        values_for(entries, key).push_back(utf8_or_latin1(std::string_view(entry).substr(equals + 1)));
    }
    return entries;
}

bool holds_fields(const std::optional<std::string>& comment) noexcept try {
    return comment && !entries_of_comment(*comment).empty();
} catch (const std::exception&) {
    return false;
}

std::string edit_xiph(const std::string& comment, const tag_changes& changes) {
    auto parts = take_apart_xiph(comment);
    for (const auto& change : changes) {
        std::vector<std::string> old_names;
        std::size_t place = parts.entries.size();
        for (std::size_t i = 0; i < parts.entries.size();) {
            const auto name = name_of_entry(parts.entries[i]);
            if (!concerns(change, ascii_upper(name))) {
                ++i;
                continue;
            }
            if (old_names.empty()) place = i;
            old_names.push_back(name);
            parts.entries.erase(parts.entries.begin() + static_cast<std::ptrdiff_t>(i));
        }
        place = std::min(place, parts.entries.size());
        for (const auto& [key, values] : change.writes) {
            // A field keeps the spelling of its name that the file has.
            const auto same = std::ranges::find(old_names, field_of_key(key), field_of_key);
            const std::string name = same == old_names.end() ? key : *same;
            if (!TagLib::Ogg::XiphComment::checkKey(TagLib::String(name, TagLib::String::UTF8)))
                cannot_hold("Vorbis comments", change.field, "names there are plain ASCII characters without \"=\"");
            for (const auto& value : values)
                parts.entries.insert(parts.entries.begin() + static_cast<std::ptrdiff_t>(place++), name + "=" + value);
        }
    }
    return bytes_of(parts);
}

}  // namespace ostrevan::tags
