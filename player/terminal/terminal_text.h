#pragma once

#include <string>
#include <string_view>

namespace ostrevan::terminal {

/// Makes text safe for a terminal. Control characters (C0 and C1) and direction marks of tags and names are replaced by
/// their code, as `<U+001B>`; line feeds and tabs are kept. A malformed byte becomes U+FFFD.
std::string shown_on_terminal(std::string_view text);
/// Likewise; line feeds and tabs become blanks.
std::string shown_in_one_line(std::string_view text);

}  // namespace ostrevan::terminal
