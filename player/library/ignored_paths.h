#pragma once

#include <set>
#include <string>
#include <string_view>

namespace ostrevan::library {

/// Files and folders that the user does not want in the library although they lie in one of its folders.
using ignored_paths = std::set<std::string, std::less<>>;

/// True for the place itself as well. "/Music/A" is not above "/Music/Alpha". Paths are normal.
bool is_below(std::string_view path, std::string_view place) noexcept;

}  // namespace ostrevan::library
