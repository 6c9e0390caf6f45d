#pragma once

#include <string_view>

#include "player/query/condition.h"
#include "player/query/scanner.h"

namespace ostrevan::query {

/// An operator after a field.
struct comparison {
    std::string_view keyword;
    /// Reads the right operand.
    condition_ptr (*build)(titleformat::script left, scanner& right) = nullptr;
    /// Tests for the presence of the field, so any name is valid.
    bool asks_for_presence = false;
};

/// Null when the word is not an operator.
[[nodiscard]] const comparison* find_operator(std::string_view word) noexcept;

}  // namespace ostrevan::query
