#pragma once

#include <string>
#include <string_view>

#include "ostrevan/file_info.h"

namespace ostrevan::library {

/// Encodes track information for storage: a version byte, then the sound and every field; numbers in groups of seven bits,
/// lowest first; texts with their length in front. Format: docs/file-formats.md.
std::string encode_info(const file_info& info);

/// Throws ostrevan_io::exception_io_data for malformed bytes; never reads past them.
file_info decode_info(std::string_view bytes);

}  // namespace ostrevan::library
