#pragma once

#include <string>
#include <string_view>

namespace ostrevan::system {

/// Replaces a file as a whole: writes a new one beside it, syncs it to disk, renames it over the old one. Throws with a
/// message that names the file; the old file is then unchanged. `mode` is the permission bits of the new file.
void replace_file(const std::string& path, std::string_view bytes, unsigned mode = 0644);

}  // namespace ostrevan::system
