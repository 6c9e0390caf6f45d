#pragma once

#include <functional>
#include <string>

#include "ostrevan/filesystem.h"

namespace ostrevan::services {

/// Told, on the thread that releases a file, what became of one that was not finished.
using unfinished_file_sink = std::function<void(const std::string& text)>;

/// Opens a file that is written beside the one of this name, as `NAME.part`, and takes its place at the first `flush`.
/// Released before, it stays beside the older file, which is as it was, and the sink is told its name; it goes when it is
/// empty. A link keeps its target's place, and what is no regular file, such as a pipe, is written to as it is. Throws as
/// the file system's `open`.
file_ptr open_new_file(const std::string& path, const unfinished_file_sink& on_unfinished);

}  // namespace ostrevan::services
