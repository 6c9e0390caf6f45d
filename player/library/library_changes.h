#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "player/library/track.h"

namespace ostrevan::library {

/// A track whose tags or location another program changed, with the same sound.
struct track_edit {
    track_ptr track;
    metadb_info_ptr before;
    metadb_info_ptr after;
    std::optional<playable_location> location_before{};  // when it has moved
};

/// Returns the next edits of many, so that not all of them are in memory at once; none at the end.
using edit_portions = std::function<std::vector<track_edit>()>;
inline constexpr std::size_t edits_of_portion = 128;

/// The changes of a scan. A track is in at most one of the first three lists; every edited track is also modified, or added
/// if it has moved.
struct library_changes {
    std::vector<track_ptr> added;
    std::vector<track_ptr> removed;
    std::vector<track_ptr> modified;
    std::vector<track_edit> edited;

    [[nodiscard]] bool empty() const noexcept { return added.empty() && removed.empty() && modified.empty(); }
};

class library_observer {
public:
    /// The changes are saved and visible in the handles. Called on the thread of the work that made them.
    virtual void on_library_changed(const library_changes& changes) = 0;
    /// Called once, when stored information cannot be read. Its tracks have none then. [any-thread]
    virtual void on_failure(const std::string& message) = 0;

protected:
    ~library_observer() = default;
};

/// Whether two readings of a file have the same sound: codec, sample rate, channels, and length within the error of its
/// computation when tags grow.
bool is_same_sound(const file_info& a, const file_info& b) noexcept;

}  // namespace ostrevan::library
