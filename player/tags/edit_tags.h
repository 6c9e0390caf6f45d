#pragma once

#include "ostrevan/file_info.h"
#include "player/tags/bytes.h"
#include "player/tags/edit_bytes.h"
#include "player/tags/open_file.h"

namespace ostrevan::tags {

/// Each edits the tag of a file that is open for writing. Failed writes show in the stream. @throws edit_error
void edit_id3v2_in_front(file_stream& stream, const tag_changes& changes, tag_role role);
void edit_ape_at_end(file_stream& stream, const tag_changes& changes, tag_role role);
void edit_id3v2_chunk(file_stream& stream, const tag_changes& changes, bool big_endian_sizes);
void edit_flac_comment(file_stream& stream, const tag_changes& changes);
void edit_ogg_comment(file_stream& stream, container kind, const tag_changes& changes);
void edit_mp4(file_stream& stream, const tag_changes& changes);
void edit_asf(file_stream& stream, const tag_changes& changes);

/// Makes the fields of an open file those of `after`, touching only entries of fields that differ from `before`.
/// Both in canonical form. @throws edit_error
void edit_tags(opened_file& opened, const file_info& before, const file_info& after);

}  // namespace ostrevan::tags
