#pragma once

#include <cstdint>

#include "player/tags/open_file.h"

namespace ostrevan::tags {

/// A number by which the encoded audio is known again after its file was renamed and its tags were changed, taken from a few
/// bytes: the digest that FLAC carries, the last page of Ogg, else the size of the audio and a kilobyte from its middle.
/// Stored by the library, so it never changes for the same audio. 0 when there is nothing to take it from.
std::uint64_t sound_mark(const opened_file& opened);

}  // namespace ostrevan::tags
