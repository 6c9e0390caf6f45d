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
    /// Goes on to the value if the name of the attribute is the expected one: then it need not be looked for.
    bool skip_expected_name(std::string_view& list) const;
    /// Goes on to the value, and returns the name before it.
    static std::string_view take_name(std::string_view& list);
    std::string_view decoded_name(std::string_view written);

    std::string decoded_name_;
    std::string decoded_value_;
    bool names_as_written_ = true;  ///< no name of an attribute so far had to be decoded
};

}  // namespace Vek
