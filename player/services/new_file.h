#pragma once

#include <functional>
#include <string>

#include "ostrevan/filesystem.h"

namespace ostrevan::services {

/// Receives a text about an unfinished file, on the thread that releases it.
using unfinished_file_sink = std::function<void(const std::string& text)>;

/// Opens `NAME.part` for writing; the first `flush` moves it to the place of the older file. If it is released before, the
/// older file is unchanged, and the part remains, unless empty, and is reported to the sink. A link keeps pointing to its
/// target; what is not a regular file, such as a pipe, is written to directly. Throws as the file system's `open`.
file_ptr open_new_file(const std::string& path, const unfinished_file_sink& on_unfinished);

}  // namespace ostrevan::services
