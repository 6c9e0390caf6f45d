#pragma once

#include <string>
#include <string_view>

namespace ostrevan::system {

/// The folder part of a path; "." when there is none.
std::string folder_of(const std::string& path);

/// Writes all bytes at the file's position. Returns 0 or the error.
int write_all(int file, std::string_view bytes) noexcept;

/// Syncs a file, or the names in a folder, to disk. Returns 0 or the error. It is no failure when there is no disk to sync
/// to, as for a pipe or on some network file systems.
int sync_to_disk(int file) noexcept;
int sync_to_disk(const std::string& path) noexcept;

/// Replaces a file as a whole: writes a new one beside it, syncs it to disk, renames it over the old one. Throws with a
/// message that names the file; the old file is then unchanged. `mode` is the permission bits of the new file.
void replace_file(const std::string& path, std::string_view bytes, unsigned mode = 0644);

}  // namespace ostrevan::system
