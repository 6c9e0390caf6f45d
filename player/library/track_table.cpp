#include "player/library/track_table.h"

namespace ostrevan::library {

track_ptr track_table::obtain(std::string_view path, std::uint32_t subsong) {
    const std::lock_guard guard(mutex_);
    if (const auto found = tracks_.find({path, subsong}); found != tracks_.end()) return found->second;
    auto made = service_new<track>(playable_location{std::string(path), subsong});
    tracks_.emplace(key{made->location().path, subsong}, made);
    return made;
}

track_ptr track_table::find(std::string_view path, std::uint32_t subsong) const {
    const std::lock_guard guard(mutex_);
    const auto found = tracks_.find({path, subsong});
    return found != tracks_.end() ? found->second : track_ptr();
}

void track_table::reserve(std::size_t tracks) {
    const std::lock_guard guard(mutex_);
    tracks_.reserve(tracks);
}

}  // namespace ostrevan::library
