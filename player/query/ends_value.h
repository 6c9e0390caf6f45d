#pragma once

#include "player/query/scanner.h"

namespace ostrevan::query {

/// Words of the language can be words of a title too: "Belle and Sebastian". AND, OR and SORT in capitals always count as
/// words of the language. In small letters they count only where what belongs after them follows.

/// Whether a comparison comes next, such as `artist is` or `not ("..." has`.
[[nodiscard]] bool comparison_follows(scanner next);

/// Whether AND, OR, SORT or LIMIT comes next and ends the value, or the words to search for, before it.
[[nodiscard]] bool ends_value(scanner next);

}  // namespace ostrevan::query
