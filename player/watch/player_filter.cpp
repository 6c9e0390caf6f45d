#include "player/watch/player_filter.h"

#include <algorithm>

#include "nuv/text.h"

namespace ostrevan::watch {
namespace {

bool contains(const std::vector<std::string>& names, std::string_view player) {
    return std::ranges::any_of(names, [&](std::string_view name) {
        const bool is_whole = player.size() == name.size() || (player.size() > name.size() && player[name.size()] == '.');
        return is_whole && nuv::equal_ascii_nocase(player.substr(0, name.size()), name);
    });
}

}  // namespace

bool player_filter::admits(std::string_view player) const {
    return (only.empty() || contains(only, player)) && !contains(except, player);
}

}  // namespace ostrevan::watch
