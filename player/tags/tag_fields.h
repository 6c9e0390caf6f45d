#pragma once

#include "ostrevan/file_info_builder.h"
#include "player/tags/open_file.h"

namespace ostrevan::tags {

/// The tags of the file that hold anything, the one that wins first. docs/tag-storage.md has the table.
std::vector<TagLib::Tag*> tags_by_precedence(const opened_file& opened);

/// ID3v1 and WAV INFO hold a few fields, cut off at a fixed size. They are read, but never written.
bool is_limited(const TagLib::Tag* tag);

/// The fields of one tag under the player's names, added to what is in `info` already.
void add_tag_fields(const TagLib::Tag& tag, file_info_builder& info);

/// Fields of the first tag, and the statistics that only later tags hold.
void add_fields(const opened_file& opened, file_info_builder& info);

/// Fields and sound.
file_info_builder info_of(const opened_file& opened);

}  // namespace ostrevan::tags
