#pragma once

#include "player/tags/digest.h"
#include "player/tags/file_stream.h"
#include "player/tags/formats.h"

namespace ostrevan::tags {

/// A digest of the encoded sound and its description, found as a decoder finds them: by packets and checksums in Ogg, by
/// offset tables and fragments in MP4. Tags are left out, so an edit of tags must not change it. Reads the whole sound.
/// @throws edit_error when a decoder could not find the sound.
std::uint64_t digest_of_sound(container kind, file_stream& stream);

/// The bytes of the file between two places, and how many of them there are.
void add_range(digest& to, file_stream& stream, long begin, long end);

/// The formats that have a file of their own.
void add_ogg_sound(digest& to, container kind, file_stream& stream);
void add_mp4_sound(digest& to, file_stream& stream);

}  // namespace ostrevan::tags
