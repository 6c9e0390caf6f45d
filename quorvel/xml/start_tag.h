#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "quorvel/xml/attributes.h"

namespace Vek {

/// A start tag. One object reads many, one after the other, and keeps its memory.
class start_tag {
public:
    /// Reads the tag that begins at the `<` at `at` and returns the position after its `>`. Throws `xmlParser::error`.
    std::size_t read(std::string_view text, std::size_t at);

    std::string name;          ///< decoded, with its prefix
    xmlAttributes attributes;  ///< with the namespace declarations
    bool self_closing = false;

private:
    /// `plain` if nothing in the list has to be decoded.
    void read_attributes(std::string_view list, bool plain);
    /// Adds an attribute under its decoded name. Throws for one of a name that is there already.
    void add(std::string_view written_name, std::string_view value);
    /// Moves on to the value if the attribute has the expected name, which then need not be searched for its end.
    bool skip_expected_name(std::string_view& list) const;
    /// Returns the name and moves on to the value.
    static std::string_view take_name(std::string_view& list);

    std::string decoded_name_;
    std::string decoded_value_;
};

}  // namespace Vek
