#include "player/library/ignored_paths.h"

namespace ostrevan::library {

bool is_below(std::string_view path, std::string_view place) noexcept {
    return path.starts_with(place) && (path.size() == place.size() || path[place.size()] == '/' || place == "/");
}

}  // namespace ostrevan::library
