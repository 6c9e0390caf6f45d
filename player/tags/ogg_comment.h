#pragma once

#include "player/tags/changes.h"
#include "player/tags/file_stream.h"
#include "player/tags/formats.h"

namespace ostrevan::tags {

/// The Vorbis comment of the first logical stream of an Ogg file, without the mark in front of it in its packet.
/// @throws edit_error when it is not there.
std::string read_ogg_comment(container kind, file_stream& stream);

/// @throws edit_error
void edit_ogg_comment(file_stream& stream, container kind, const tag_changes& changes);

}  // namespace ostrevan::tags
