#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ostrevan::system {

/// "1 track", "2 tracks".
inline std::string counted(std::size_t number, std::string_view thing) {
    return std::to_string(number).append(" ").append(thing).append(number == 1 ? "" : "s");
}

}  // namespace ostrevan::system
