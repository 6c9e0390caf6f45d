#pragma once

#include "ostrevan/track.h"

namespace quorvel {

/// Name of the private clipboard format that carries statistics.
inline constexpr const char* clipboard_format = "{9B7A2C92-BC1E-4a96-BB97-B19884AB2141}";

/// Puts the records of the tracks on the clipboard, in their order: a 32-bit count, then for each track play count, first
/// played, last played and added with 64 bits and the rating with 32, little-endian. Throws `nuv::exception_overflow` for a
/// count beyond 32 bits, and what the clipboard throws. [main-thread], checked
void copyStatistics(ostrevan::metadb_handle_list_cref tracks);

/// Shows what the clipboard holds and, if the user agrees, replaces the records of the tracks by it, in their order. True if
/// the user has been asked, false if nothing will be written. Throws `ostrevan_io::exception_io_data_truncation` when the
/// block ends early. [main-thread], checked
bool pasteStatistics(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
