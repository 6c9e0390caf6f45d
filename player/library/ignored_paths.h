#pragma once

#include <set>
#include <string>
#include <string_view>

namespace ostrevan::library {

/// Files and folders inside library folders that the user does not want in the library.
using ignored_paths = std::set<std::string, std::less<>>;

/// True for `place` itself as well. "/Music/Alpha" is not below "/Music/A". Paths are normal.
bool is_below(std::string_view path, std::string_view place) noexcept;

}  // namespace ostrevan::library
