#pragma once

#include <string>
#include <string_view>

#include "ostrevan/file_info.h"

namespace ostrevan::library {

/// The form in which track information is stored: a version byte, then the sound and every field, numbers in groups of
/// seven bits (lowest first), texts with their length in front. Laid down in docs/file-formats.md.
std::string encode_info(const file_info& info);

/// Throws ostrevan_io::exception_io_data when the bytes are not what `encode_info` made; never reads past them.
file_info decode_info(std::string_view bytes);

}  // namespace ostrevan::library
