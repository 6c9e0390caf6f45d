#pragma once

#include <sys/stat.h>

#include <string>

namespace ostrevan::system {

/// The folder for what lasts until the user logs out: `$XDG_RUNTIME_DIR/ostrevan`; where the variable is missing, as in a
/// timed job, the same below the usual folder of the session, else one in `/tmp`. It need not exist.
std::string runtime_folder();

/// Whether a file or folder belongs to this user and nobody else may touch it.
bool is_private(const struct stat& status) noexcept;

}  // namespace ostrevan::system
