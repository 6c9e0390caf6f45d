// The library's own saving drops texts that are not UTF-8, items without a value and all but one item of a name, and sorts
// the others.
#include <apetag.h>
#include <tpropertymap.h>

#include <algorithm>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"
#include "player/tags/outer_tags.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t footer_size = ape_footer_size;
constexpr std::uint64_t has_header_flag = 0x80000000;
constexpr std::uint64_t is_header_flag = 0x20000000;
constexpr std::uint64_t written_version = 2000;

struct ape_item {
    std::string key;
    /// The whole item, as in the file.
    std::string bytes;
};

std::vector<ape_item> items_of(const std::string& tag) {
    std::vector<ape_item> items;
    const bool has_header = tag.starts_with("APETAGEX");
    std::size_t at = has_header ? footer_size : 0;
    const std::size_t end = tag.size() - footer_size;
    while (at + 8 < end) {
        const auto size = little_endian(tag, at, 4);
        const auto zero = tag.find('\0', at + 8);
        if (zero >= end || size > end - zero - 1) throw edit_error("its APE tag is damaged");
        items.push_back({tag.substr(at + 8, zero - at - 8), tag.substr(at, zero + 1 + size - at)});
        at = zero + 1 + size;
    }
    return items;
}

ape_item item_of(const std::string& name, const std::vector<std::string>& values) {
    std::string text;
    for (const auto& value : values) text += (text.empty() ? "" : std::string(1, '\0')) + value;
    return {name, as_little_endian(text.size(), 4) + std::string(4, '\0') + name + '\0' + text};
}

std::string name_of_new_item(const std::string& key) {
    std::string name = ape_item_of_key(key);
    if (!TagLib::APE::Tag::checkKey(TagLib::String(name, TagLib::String::UTF8)))
        cannot_hold("APEv2", key, "names there have 2 to 255 plain ASCII characters");
    return name;
}

std::string tag_of(const std::vector<ape_item>& items) {
    std::string body;
    for (const auto& item : items) body += item.bytes;
    const auto block = [&](std::uint64_t flags) {
        return "APETAGEX" + as_little_endian(written_version, 4) + as_little_endian(body.size() + footer_size, 4) +
               as_little_endian(items.size(), 4) + as_little_endian(flags, 4) + std::string(8, '\0');
    };
    return block(has_header_flag | is_header_flag) + body + block(has_header_flag);
}

}  // namespace

std::string edit_ape(const std::string& bytes, const tag_changes& changes, tag_role role) {
    std::vector<ape_item> items;
    if (!bytes.empty()) items = items_of(bytes);
    bool edited = false;
    for (const auto& change : changes) {
        std::string old_name;
        const auto held = std::erase_if(items, [&](const ape_item& item) {
            if (!concerns(change, key_of_ape_item(item.key))) return false;
            if (old_name.empty()) old_name = item.key;
            return true;
        });
        edited |= held != 0;
        if (role == tag_role::other && held == 0) continue;
        for (const auto& [key, values] : change.writes) {
            const bool same_name = field_of_key(key_of_ape_item(old_name)) == field_of_key(key);
            items.push_back(item_of(same_name ? old_name : name_of_new_item(key), values));
            edited = true;
        }
    }
    return edited ? tag_of(items) : bytes;
}

void edit_ape_at_end(file_stream& stream, const tag_changes& changes, tag_role role) {
    const auto tag = ape_tag_at_end(stream);
    if (!tag && role == tag_role::other) return;
    if (tag && (tag->begin < 0 || tag->end - tag->begin < ape_footer_size)) throw edit_error("its APE tag is damaged");
    const long start = tag ? tag->begin : end_before_id3v1(stream);
    const std::string old = tag ? read_bytes(stream, start, static_cast<std::uint64_t>(tag->end - start)) : "";
    const std::string edited = edit_ape(old, changes, role);
    if (edited != old) replace_bytes(stream, edited, start, old.size());
}

}  // namespace ostrevan::tags
