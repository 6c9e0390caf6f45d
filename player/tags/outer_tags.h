#pragma once

#include <optional>

#include "player/tags/file_stream.h"

namespace ostrevan::tags {

/// Places of a file.
struct byte_range {
    long begin = 0;
    long end = 0;
};

/// Where the sound's container begins: 0, or after the ID3v2 tags in front of it.
long start_after_id3v2(TagLib::IOStream& stream);

/// The file's length without an ID3v1 tag at its end.
long end_before_id3v1(TagLib::IOStream& stream);

inline constexpr long ape_footer_size = 32;

/// The APE tag at the end of the file, or in front of an ID3v1 tag there, as large as its footer states: it may begin before
/// the file, or after its own end.
std::optional<byte_range> ape_tag_at_end(TagLib::IOStream& stream);

/// The bytes between the tags at the start and those at the end.
byte_range sound_between_tags(TagLib::IOStream& stream);

}  // namespace ostrevan::tags
