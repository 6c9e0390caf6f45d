// The library's own saving drops atoms with bytes that it does not know and genres by number, forgets the languages of texts
// and cuts "disk" short; in files of fragments it moves the offsets wrongly.
#include <mp4tag.h>
#include <tpropertymap.h>

#include <algorithm>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"
#include "player/tags/freeform.h"
#include "player/tags/mp4_atoms.h"

namespace ostrevan::tags {
namespace {

namespace MP4 = TagLib::MP4;

constexpr std::string_view freeform_prefix = "----:com.apple.iTunes:";
constexpr std::string_view freeform_start = "----:";
constexpr long atom_room_to_grow = 1024;
constexpr unsigned text_type = 1;
constexpr unsigned number_type = 21;

/// Atoms that hold numbers, and how many bytes of them; all others hold text.
struct number_atom {
    std::string_view name;
    std::size_t size;
};
constexpr number_atom number_atoms[] = {{"tmpo", 2}, {"\xA9mvi", 2}, {"\xA9mvc", 2}, {"tvsn", 4}, {"tves", 4}, {"cpil", 1},
                                        {"pgap", 1}, {"pcst", 1},    {"shwm", 1},    {"stik", 1}, {"rtng", 1}, {"hdvd", 1}};

/// An entry of the list of tags: its name as the library has it ("----:mean:name" for freeform atoms) and its bytes.
struct tag_item {
    std::string name;
    std::string bytes;
};

std::string name_of_freeform(file_stream& stream, const mp4_atom& atom) {
    std::string mean, name;
    for (const auto& part : children_of(stream, atom)) {
        std::string* text = part.name == "mean" ? &mean : part.name == "name" ? &name : nullptr;
        if (text != nullptr && part.size > part.header + 4)
            *text = read_bytes(stream, part.body() + 4, static_cast<std::uint64_t>(part.size - part.header - 4));
    }
    return std::string(freeform_start) + mean + ":" + name;
}

std::vector<tag_item> items_in(file_stream& stream, const mp4_atom& list) {
    std::vector<tag_item> items;
    for (const auto& atom : children_of(stream, list))
        items.push_back({atom.name == "----" ? name_of_freeform(stream, atom) : atom.name,
                         read_bytes(stream, atom.offset, static_cast<std::uint64_t>(atom.size))});
    return items;
}

/// The items that hold an entry; the library knows those with a name of their own, others are freeform.
MP4::ItemMap library_items(const std::string& key, const std::vector<std::string>& values) {
    TagLib::StringList list;
    for (const auto& value : values) list.append(TagLib::String(value, TagLib::String::UTF8));
    TagLib::PropertyMap map;
    map.insert(TagLib::String(key, TagLib::String::UTF8), list);
    MP4::Tag translator;
    if (translator.setProperties(map).isEmpty()) return translator.itemMap();
    MP4::ItemMap items;
    items.insert(TagLib::String(std::string(freeform_prefix) + key, TagLib::String::UTF8), MP4::Item(list));
    return items;
}

/// Atom names are Latin-1, those of freeform atoms UTF-8.
std::string name_of_item(const TagLib::String& name) { return name.to8Bit(name.startsWith(std::string(freeform_start))); }

std::string data_atom(unsigned type, std::string_view value) {
    return atom_bytes("data", as_big_endian(type, 4) + std::string(4, '\0') + std::string(value));
}

std::string bytes_of(const std::string& name, const MP4::Item& item) {
    if (name == "trkn" || name == "disk") {
        const auto pair = item.toIntPair();
        const auto number = [](int part) { return as_big_endian(static_cast<unsigned>(part), 2); };
        return atom_bytes(name, data_atom(0, std::string(2, '\0') + number(pair.first) + number(pair.second) +
                                                 std::string(name == "trkn" ? 2 : 0, '\0')));
    }
    if (const auto* found = std::ranges::find(number_atoms, name, &number_atom::name); found != std::end(number_atoms))
        return atom_bytes(name, data_atom(number_type, as_big_endian(static_cast<unsigned>(item.toInt()), found->size)));
    std::string body;
    const bool freeform = name.starts_with(freeform_start);
    if (freeform) {
        const auto colon = name.find(':', freeform_start.size());
        body = atom_bytes("mean", std::string(4, '\0') + name.substr(freeform_start.size(), colon - freeform_start.size())) +
               atom_bytes("name", std::string(4, '\0') + name.substr(colon + 1));
    }
    for (const auto& text : item.toStringList()) body += data_atom(text_type, text.to8Bit(true));
    return atom_bytes(freeform ? "----" : name, body);
}

bool holds(const tag_item& item, const tag_change& change) {
    if (concerns(change, ascii_upper(freeform_name(TagLib::String(item.name, TagLib::String::UTF8))))) return true;
    return std::ranges::any_of(change.keys, [&](const std::string& key) {
        if (key == "GENRE" && item.name == "gnre") return true;
        for (const auto& [name, value] : library_items(key, {"1"}))
            if (name_of_item(name) == item.name) return true;
        return false;
    });
}

void apply(const tag_change& change, std::vector<tag_item>& items) {
    std::string freeform_spelling;
    std::size_t place = items.size();
    for (std::size_t i = 0; i < items.size();) {
        if (!holds(items[i], change)) {
            ++i;
            continue;
        }
        if (freeform_spelling.empty() && items[i].name.starts_with(freeform_start)) freeform_spelling = items[i].name;
        if (place > items.size() - 1) place = i;
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(i));
    }
    place = std::min(place, items.size());
    for (const auto& [key, values] : change.writes)
        for (const auto& [library_name, item] : library_items(key, values)) {
            std::string name = name_of_item(library_name);
            if (name.starts_with(freeform_start) && !freeform_spelling.empty()) name = freeform_spelling;
            items.insert(items.begin() + static_cast<std::ptrdiff_t>(place++), {name, bytes_of(name, item)});
        }
}

/// The chain of atoms down to the list of tags, as far as it is there.
std::vector<mp4_atom> way_to_list(file_stream& stream) {
    std::vector<mp4_atom> way;
    auto level = atoms_between(stream, 0, stream.length());
    for (const auto name : {"moov", "udta", "meta", "ilst"}) {
        const auto* found = find_atom(level, name);
        if (found == nullptr) break;
        way.push_back(*found);
        if (way.size() < 4) level = children_of(stream, way.back());
    }
    if (way.empty()) throw edit_error("it has no header (\"moov\" atom)");
    return way;
}

/// The list inside those of its parents that are missing too.
std::string wrapped(std::string list, std::size_t parents_there) {
    const std::string handler = atom_bytes("hdlr", std::string(8, '\0') + "mdirappl" + std::string(9, '\0'));
    if (parents_there < 3) list = atom_bytes("meta", std::string(4, '\0') + handler + list);
    return parents_there < 2 ? atom_bytes("udta", list) : list;
}

}  // namespace

void edit_mp4(file_stream& stream, const tag_changes& changes) {
    auto parents = way_to_list(stream);
    const bool has_list = parents.size() == 4;
    std::vector<tag_item> items;
    long at = parents.back().end();
    long available = 0;
    if (has_list) {
        const mp4_atom list = parents.back();
        parents.pop_back();
        items = items_in(stream, list);
        at = list.offset;
        available = list.size;
        // Free room after the list is used before anything has to move.
        for (const auto& sibling : children_of(stream, parents.back()))
            if (sibling.offset == list.end() && sibling.name == "free") available += sibling.size;
    }
    for (const auto& change : changes) apply(change, items);
    std::string body;
    for (const auto& item : items) body += item.bytes;
    std::string edited = wrapped(atom_bytes("ilst", body), parents.size());
    if (has_list) {
        const long left = available - static_cast<long>(edited.size());
        if (left != 0)
            edited +=
                atom_bytes("free", std::string(static_cast<std::size_t>(left >= 8 ? left - 8 : atom_room_to_grow), '\0'));
    }
    replace_inside(stream, parents, edited, at, available);
}

}  // namespace ostrevan::tags
