#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/tags/sound.h"
#include "player/tags/tag_entries.h"

namespace ostrevan::tags {

/// A metadata block of a FLAC file: where its header is, its type and the size of its body.
struct flac_block_place {
    long at = 0;
    int type = 0;
    long size = 0;
};
inline constexpr long flac_block_header_size = 4;
inline constexpr int flac_stream_block = 0;
inline constexpr int flac_padding_block = 1;
inline constexpr int flac_comment_block = 4;

/// The metadata blocks from the one behind "fLaC" on; empty when they do not fit into the file.
std::vector<flac_block_place> flac_block_places(file_stream& stream);

/// Of a FLAC file, from its first block.
sound sound_of_flac(file_stream& stream);

/// The Vorbis comment of a FLAC or Ogg file, without what is in front of it in its packet. Pictures and sound are not read,
/// which makes this far cheaper than opening the file with the library.
std::optional<std::string> read_xiph_comment(container kind, file_stream& stream);

/// The number of entries that a comment begins with, whether they are there or not.
std::uint64_t entries_stated_by(const std::string& comment);

/// The fields in a comment; pictures are no fields. @throws edit_error when it is damaged.
tag_entries entries_of_comment(const std::string& comment);

/// Whether a comment is there, in order, and has any field.
bool holds_fields(const std::optional<std::string>& comment) noexcept;

}  // namespace ostrevan::tags
