#pragma once

#include <string>
#include <string_view>

namespace ostrevan::terminal {

/// Text for a terminal. Tags, names of files and playlists can hold control characters (C0 and C1) and marks that turn the
/// direction of writing; they are shown by their code, as `<U+001B>`, so that the terminal does not obey them. Line feeds
/// and tabs stay. A malformed byte becomes U+FFFD.
std::string shown_on_terminal(std::string_view text);

}  // namespace ostrevan::terminal
