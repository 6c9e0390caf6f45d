#include "player/terminal/user_side.h"

#include <cstdlib>

#include "player/system/raw_terminal.h"

namespace ostrevan::terminal {
namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

user_side own_side() {
    return {.terminal_kind = variable("TERM"), .home = variable("HOME"), .is_in_foreground = system::is_in_foreground};
}

}  // namespace ostrevan::terminal
