#pragma once

#include <optional>
#include <span>
#include <vector>

#include "player/library/track.h"

namespace ostrevan::library {

/// A track whose tags or place another program has changed, while the sound stayed the same.
struct track_edit {
    track_ptr track;
    metadb_info_ptr before;
    metadb_info_ptr after;
    std::optional<playable_location> location_before{};  // when it has moved
};

/// What a scan did to the library. A track is in one of the first three lists at most; every edited track is a modified one
/// as well, or an added one that was somewhere else before.
struct library_changes {
    std::vector<track_ptr> added;
    std::vector<track_ptr> removed;
    std::vector<track_ptr> modified;
    std::vector<track_edit> edited;

    [[nodiscard]] bool empty() const noexcept { return added.empty() && removed.empty() && modified.empty(); }
};

/// Told of changes when they are in the database and the handles show them. [main-thread]
class library_observer {
public:
    virtual void on_library_changed(const library_changes& changes) = 0;

protected:
    ~library_observer() = default;
};

/// Whether two readings of a file are of the same sound: coding, sample rate, channels, and length within what its
/// computation varies by when tags grow.
bool is_same_sound(const file_info& a, const file_info& b) noexcept;

}  // namespace ostrevan::library
