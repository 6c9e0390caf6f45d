#pragma once

#include "player/tags/digest.h"
#include "player/tags/file_stream.h"
#include "player/tags/formats.h"

namespace ostrevan::tags {

/// A digest of what a decoder receives of the file: how the sound is encoded, and the encoded sound, found by the way that a
/// decoder takes to it (packets and their checksums in Ogg, tables of offsets and fragments in MP4). Tags have no part in
/// it: after an edit of tags it must be what it was. All bytes of the sound are read. @throws edit_error when the way is
/// damaged
std::uint64_t digest_of_sound(container kind, file_stream& stream);

/// The bytes of the file between two places, and how many of them there are.
void add_range(digest& to, file_stream& stream, long begin, long end);

/// The formats that have a file of their own.
void add_ogg_sound(digest& to, container kind, file_stream& stream);
void add_mp4_sound(digest& to, file_stream& stream);

}  // namespace ostrevan::tags
