#pragma once

#include <string>

#include "ostrevan/filesystem.h"

namespace ostrevan {

/// A file of this machine. Throws as the file system's `open`. Only a regular file has a size; nothing waits for the other
/// end of a pipe.
file_ptr open_local_file(const std::string& path, filesystem::open_mode mode);

/// The exception of an error number: what failed, then the system's reason.
[[noreturn]] void throw_io_error(const std::string& what, int error);

}  // namespace ostrevan
