#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "quorvel/xml/xml_parser.h"

namespace Vek {

/// Finds where the content of elements ends. It keeps its own stack, so that deep nesting takes memory but no stack space,
/// and reads every byte once.
class content_end {
public:
    /// `text` is the buffer that is parsed; `parser` tells which elements are empty or raw.
    content_end(xmlParser& parser, std::string_view text) : parser_(parser), text_(text) {}

    /// The position of the `<` of the end tag, which is complete, for an element whose content begins at `from`. Throws
    /// `xmlParser::error` if it is missing or has another name, or if the content is not well-formed.
    [[nodiscard]] std::size_t find(std::string_view name, std::size_t from);

private:
    /// The end tag of a raw element: the exact bytes.
    [[nodiscard]] std::size_t find_raw(std::string_view name, std::size_t from);
    /// Skips the start tag from `at` to `close`, and the content of a raw element. Pushes any other element with content.
    /// Returns where to go on.
    std::size_t enter(std::size_t at, std::size_t close);
    void leave(std::string_view raw_name);

    xmlParser& parser_;
    std::string_view text_;
    std::vector<std::string_view> open_;
    std::string asked_;
    std::string decoded_;
};

}  // namespace Vek
