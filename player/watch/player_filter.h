#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::watch {

/// Which players are heard, by names such as "vlc". Case does not matter; "firefox" also means "firefox.instance_1".
struct player_filter {
    std::vector<std::string> only{};  ///< all without one
    std::vector<std::string> except{};

    [[nodiscard]] bool admits(std::string_view player) const;
};

}  // namespace ostrevan::watch
