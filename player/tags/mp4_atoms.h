#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "player/tags/file_stream.h"

namespace ostrevan::tags {

/// One atom of an MP4 file: where it begins, its whole size and that of its header (8, or 16 with a long size).
struct mp4_atom {
    std::string name;
    long offset = 0;
    long size = 0;
    long header = 8;
    /// The size field is 0: the atom reaches to the end of the file, and keeps doing so.
    bool open_ended = false;

    [[nodiscard]] long body() const noexcept { return offset + header; }
    [[nodiscard]] long end() const noexcept { return offset + size; }
};

/// The atoms between two places. @throws edit_error when one does not fit.
std::vector<mp4_atom> atoms_between(file_stream& stream, long begin, long end);

/// The atoms inside one that is a container.
std::vector<mp4_atom> children_of(file_stream& stream, const mp4_atom& parent);

/// The first of that name, or null.
const mp4_atom* find_atom(const std::vector<mp4_atom>& atoms, std::string_view name) noexcept;

std::string atom_bytes(std::string_view name, std::string_view body);

/// Puts bytes in the place of others inside `parents` (the outermost first): their sizes and all offsets to sound after
/// the place follow. @throws edit_error
void replace_inside(file_stream& stream, const std::vector<mp4_atom>& parents, std::string_view bytes, long at,
                    long old_size);

}  // namespace ostrevan::tags
