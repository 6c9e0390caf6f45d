#pragma once

#include "player/query/scanner.h"

namespace ostrevan::query {

/// The language's words also occur in titles: "Belle and Sebastian". AND, OR and SORT in capitals are always part of the
/// language, in small letters only when followed by what belongs after them.

/// Whether a comparison comes next, such as `artist is` or `not ("..." has`.
[[nodiscard]] bool comparison_follows(scanner next);

/// Whether AND, OR, SORT or LIMIT comes next and so ends the value or search words before it.
[[nodiscard]] bool ends_value(scanner next);

}  // namespace ostrevan::query
