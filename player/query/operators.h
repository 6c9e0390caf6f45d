#pragma once

#include <string_view>

#include "player/query/condition.h"
#include "player/query/scanner.h"

namespace ostrevan::query {

/// What can stand behind a field.
struct comparison {
    std::string_view keyword;
    /// Reads what the operator needs on its right.
    condition_ptr (*build)(titleformat::script left, scanner& right) = nullptr;
    /// It asks whether there is such a field, and so makes sense for any name.
    bool asks_for_presence = false;
};

/// Null when the word is no operator.
[[nodiscard]] const comparison* find_operator(std::string_view word) noexcept;

}  // namespace ostrevan::query
