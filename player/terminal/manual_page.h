#pragma once

#include <string>

namespace CLI {
class App;
}

namespace ostrevan::terminal {

/// The manual page of the program or of one of its commands, for `man`. `version` is shown in its last line.
std::string manual_page(const CLI::App& of, const std::string& version);

}  // namespace ostrevan::terminal
