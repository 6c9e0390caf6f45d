#pragma once

#include <cstddef>

#include "player/tags/file_stream.h"
#include "player/tags/formats.h"

namespace ostrevan::tags {

/// Frames, items, comments or attributes in the tags of one file. The library takes a hundred times the size of an empty
/// one, and looking names up takes time that grows with the square of their number.
inline constexpr std::size_t most_entries = 5000;

/// @throws edit_error when there are more.
void require_entries(std::size_t count);

/// Refuses a file whose headers would cost stack, memory or time out of proportion to its size, before the library sees it.
/// Looks at headers alone. @throws edit_error
void require_limits(container kind, file_stream& stream);

}  // namespace ostrevan::tags
