#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/tags/changes.h"
#include "player/tags/sound.h"

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
inline constexpr std::size_t largest_flac_block = (1u << 24) - 1;

/// The metadata blocks from the one after "fLaC" on; empty when they do not fit into the file.
std::vector<flac_block_place> flac_block_places(file_stream& stream);

/// From the first block.
sound sound_of_flac(file_stream& stream);

/// Nothing where there is none.
std::optional<std::string> read_flac_comment(file_stream& stream);

/// @throws edit_error
void edit_flac_comment(file_stream& stream, const tag_changes& changes);

}  // namespace ostrevan::tags
