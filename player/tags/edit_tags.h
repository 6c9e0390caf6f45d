#pragma once

#include "ostrevan/file_info_builder.h"
#include "player/tags/changes.h"
#include "player/tags/errors.h"
#include "player/tags/formats.h"

namespace ostrevan::tags {

class file_stream;
struct opened_file;

/// Of several tags in a file, fields are written to the primary one; the others only follow where they hold a field.
enum class tag_role { primary, other };

/// Refuses a field, with the reason.
[[noreturn]] void cannot_hold(const std::string& format, const std::string& field, const std::string& why);

/// Each returns the bytes of a tag with the changes made and everything else as it was. An empty text makes a new tag.
/// @throws edit_error
std::string edit_id3v2(const std::string& tag, const tag_changes& changes, tag_role role);
std::string edit_ape(const std::string& tag, const tag_changes& changes, tag_role role);

/// Each edits the tag of a file that is open for writing. Failed writes show in the stream. @throws edit_error
void edit_id3v2_in_front(file_stream& stream, const tag_changes& changes, tag_role role);
void edit_ape_at_end(file_stream& stream, const tag_changes& changes, tag_role role);
void edit_id3v2_chunk(file_stream& stream, const tag_changes& changes, container kind);
void edit_mp4(file_stream& stream, const tag_changes& changes);
void edit_asf(file_stream& stream, const tag_changes& changes);

/// Makes the fields of an open file those of `after`, touching only entries of fields that differ from `before`.
/// Both in canonical form. @throws edit_error
void edit_tags(opened_file& opened, const file_info_builder& before, const file_info_builder& after);

}  // namespace ostrevan::tags
