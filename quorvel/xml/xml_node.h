#pragma once

#include <string>
#include <utility>
#include <vector>

namespace Vek {

/// An element to be written, with everything below it.
struct xmlNode {
    std::string name{};
    std::vector<std::pair<std::string, std::string>> attributes{};
    std::string text{};
    std::string inner{};  ///< markup, written as it is
    std::vector<xmlNode> children{};
};

/// Appends the element. Throws `invalid_input` for one without a name.
void writeNode(std::string& out, const xmlNode& node);

}  // namespace Vek
