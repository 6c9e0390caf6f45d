#pragma once

#include <string>
#include <string_view>

#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Writes a file durably and as a whole. Asks before it replaces one, and returns false when declined; `title` is that of
/// the question. A link keeps pointing to its target. Throws for what is not a regular file.
bool write_asking(run_context& context, const std::string& path, std::string_view bytes, const char* title);

}  // namespace ostrevan::terminal
