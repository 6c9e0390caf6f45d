#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace ostrevan::library {

/// For the tables that find by path: a start fills several, and computes this once for each file.
inline std::uint32_t hash_of_path(std::string_view path) noexcept {
    return static_cast<std::uint32_t>(std::hash<std::string_view>()(path));
}

}  // namespace ostrevan::library
