#pragma once

#include <cstddef>
#include <string_view>

namespace Vek {

/// Where the comment, CDATA section or declaration ends that begins with the `<!` at `at`. Throws `xmlParser::error` if it
/// does not end.
[[nodiscard]] std::size_t after_declaration(std::string_view text, std::size_t at);

/// The same for any `<`; `at` itself when it begins a tag.
[[nodiscard]] inline std::size_t after_markup(std::string_view text, std::size_t at) {
    return text.substr(at).starts_with("<!") ? after_declaration(text, at) : at;
}

/// The position of the `>` that ends a tag, searched from inside the tag: one between double quotes does not end it, single
/// quotes mean nothing. Throws `xmlParser::error` when there is none.
[[nodiscard]] std::size_t end_of_tag(std::string_view text, std::size_t from);

}  // namespace Vek
