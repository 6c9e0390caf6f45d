#pragma once

#include <cstddef>
#include <string_view>

namespace Vek {

/// Where the comment, CDATA section or declaration that begins at the `<` at `at` ends; `at` itself when it is a tag. Throws
/// `xmlParser::error` for one that does not end.
[[nodiscard]] std::size_t after_markup(std::string_view text, std::size_t at);

/// The position of the `>` that ends a tag, searched from inside the tag: one between double quotes does not end it, single
/// quotes mean nothing. Throws `xmlParser::error` when there is none.
[[nodiscard]] std::size_t end_of_tag(std::string_view text, std::size_t from);

}  // namespace Vek
