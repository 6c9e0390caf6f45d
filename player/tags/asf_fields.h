#pragma once

#include "ostrevan/file_info_builder.h"
#include "player/tags/file_stream.h"

namespace ostrevan::tags {

/// The fields of a Windows Media file. The library's own reading loses the order of several values, because it takes the
/// header's objects as they come. Nothing is added when the header is damaged.
void add_asf_fields(file_stream& stream, file_info_builder& info);

/// The upper-case key of an attribute; empty for technical entries, which are no fields.
std::string key_of_asf_name(const std::string& name);

/// The customary name of the attribute that holds a key.
std::string asf_name_of_key(const std::string& key);

}  // namespace ostrevan::tags
