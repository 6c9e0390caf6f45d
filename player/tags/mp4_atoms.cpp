#include "player/tags/mp4_atoms.h"

#include <algorithm>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"

namespace ostrevan::tags {
namespace {

constexpr std::uint64_t largest_short_number = 0xFFFFFFFF;

void write_number(file_stream& stream, long at, std::uint64_t number, std::size_t size) {
    if (size == 4 && number > largest_short_number) throw edit_error("it would grow beyond the 4 GB that its offsets allow");
    stream.seek(at, TagLib::IOStream::Beginning);
    stream.writeBlock(to_vector(as_big_endian(number, size)));
}

/// Moves those offsets of a table that point after `place`: `count` entries of `size` bytes from `at` on, all inside `atom`.
void move_offsets(file_stream& stream, const mp4_atom& atom, long at, std::uint64_t count, std::size_t size, long place,
                  long by) {
    if (at > atom.end() || count > static_cast<std::uint64_t>(atom.end() - at) / size)
        throw edit_error("its table of offsets is damaged");
    std::string table = read_bytes(stream, at, count * size);
    for (std::size_t i = 0; i + size <= table.size(); i += size) {
        const auto offset = big_endian(table, i, size);
        if (offset < static_cast<std::uint64_t>(place)) continue;
        const auto moved = offset + static_cast<std::uint64_t>(by);
        if (size == 4 && moved > largest_short_number)
            throw edit_error("it would grow beyond the 4 GB that its offsets allow");
        table.replace(i, size, as_big_endian(moved, size));
    }
    stream.seek(at, TagLib::IOStream::Beginning);
    stream.writeBlock(to_vector(table));
}

/// Containers on the way to tables of offsets.
constexpr std::string_view ways[] = {"moov", "trak", "mdia", "minf", "stbl", "moof", "traf"};

void move_offsets_in(file_stream& stream, std::vector<mp4_atom> atoms, long place, long by) {
    while (!atoms.empty()) {
        const mp4_atom atom = std::move(atoms.back());
        atoms.pop_back();
        if (std::ranges::find(ways, atom.name) != std::end(ways)) {
            const auto inner = children_of(stream, atom);
            atoms.insert(atoms.end(), inner.begin(), inner.end());
        } else if (atom.name == "stco" || atom.name == "co64") {
            const auto count = big_endian(read_bytes(stream, atom.body() + 4, 4), 0, 4);
            const std::size_t size = atom.name == "co64" ? 8 : 4;
            move_offsets(stream, atom, atom.body() + 8, count, size, place, by);
        } else if (atom.name == "tfhd") {
            const bool has_base = (big_endian(read_bytes(stream, atom.body(), 4), 0, 4) & 1) != 0;
            if (has_base) move_offsets(stream, atom, atom.body() + 8, 1, 8, place, by);
        } else if (atom.name == "mfra" || atom.name == "saio") {
            throw edit_error("it is cut in fragments in a way that cannot be edited without loss");
        }
    }
}

}  // namespace

std::vector<mp4_atom> atoms_between(file_stream& stream, long begin, long end) {
    std::vector<mp4_atom> atoms;
    // Fewer than eight bytes at the end of a container are padding that some programs leave.
    for (long at = begin; at + 8 <= end;) {
        const std::string head = read_bytes(stream, at, 16);
        mp4_atom atom{head.substr(4, 4), at, static_cast<long>(big_endian(head, 0, 4))};
        if (atom.size == 1) {
            atom.size = static_cast<long>(big_endian(head, 8, 8));
            atom.header = 16;
        } else if (atom.size == 0) {
            atom.size = end - at;
            atom.open_ended = true;
        }
        if (atom.size < atom.header || atom.size > end - at) throw edit_error("its atoms are damaged or cut off");
        atoms.push_back(atom);
        at = atom.end();
    }
    return atoms;
}

std::vector<mp4_atom> children_of(file_stream& stream, const mp4_atom& parent) {
    // "meta" has a version in front of its atoms, except where QuickTime wrote it.
    const bool versioned = parent.name == "meta" && read_bytes(stream, parent.body() + 4, 4) != "hdlr";
    return atoms_between(stream, parent.body() + (versioned ? 4 : 0), parent.end());
}

const mp4_atom* find_atom(const std::vector<mp4_atom>& atoms, std::string_view name) noexcept {
    const auto found = std::ranges::find(atoms, name, &mp4_atom::name);
    return found == atoms.end() ? nullptr : &*found;
}

std::string atom_bytes(std::string_view name, std::string_view body) {
    return as_big_endian(body.size() + 8, 4) + std::string(name) + std::string(body);
}

void replace_inside(file_stream& stream, const std::vector<mp4_atom>& parents, std::string_view bytes, long at,
                    long old_size) {
    const long by = static_cast<long>(bytes.size()) - old_size;
    if (by != 0) {
        // Offsets first: with the new sizes, the search would go wrong until the bytes are in place.
        const auto top = atoms_between(stream, 0, stream.length());
        const bool sound_behind = std::ranges::any_of(top, [&](const auto& atom) { return atom.offset >= at; });
        if (sound_behind) move_offsets_in(stream, top, at, by);
        for (const auto& parent : parents) {
            if (parent.open_ended) continue;
            const bool is_long = parent.header == 16;
            write_number(stream, parent.offset + (is_long ? 8 : 0), static_cast<std::uint64_t>(parent.size + by),
                         is_long ? 8 : 4);
        }
    }
    replace_bytes(stream, bytes, at, static_cast<std::uint64_t>(old_size));
}

}  // namespace ostrevan::tags
