#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace ostrevan::view {

/// Matches a name among labels: the equal label, else the only one that contains all words of the name, without regard to
/// ASCII case.
struct label_match {
    std::optional<std::size_t> index;
    bool is_ambiguous = false;
};
label_match find_label(const std::vector<std::string_view>& labels, std::string_view name);

}  // namespace ostrevan::view
