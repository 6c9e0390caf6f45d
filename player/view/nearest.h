#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::view {

/// ` Did you mean "x"?` with the candidate nearest to a mistyped word; empty when none is near. Ignores ASCII case.
std::string did_you_mean(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace ostrevan::view
