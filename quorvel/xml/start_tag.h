#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "quorvel/xml/attributes.h"

namespace Vek {

/// A start tag; one object reads one after the other and keeps its memory.
class start_tag {
public:
    /// Reads the tag that begins at the `<` at `at` and returns the position after its `>`. Throws `xmlParser::error`.
    std::size_t read(std::string_view text, std::size_t at);

    std::string name;          ///< decoded, with its prefix
    xmlAttributes attributes;  ///< with the namespace declarations
    bool self_closing = false;

private:
    /// `plain` when nothing in the list is to be decoded.
    void read_attributes(std::string_view list, bool plain);

    std::string decoded_name_;
    std::string decoded_value_;
};

}  // namespace Vek
