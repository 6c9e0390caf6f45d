#pragma once

namespace ostrevan::playback {

/// Everything that a listener can do while tracks play, whatever the way: a key, a command, the desktop, the window.
enum class action {
    toggle_pause,
    pause,
    resume,
    next,
    previous,
    seek_by,        ///< seconds
    seek_to,        ///< seconds from the start of the track
    change_volume,  ///< by percent
    set_volume,     ///< 0 to 100
    cycle_repeat,   ///< off, track, list
    set_repeat,     ///< a `repeat_mode`
    cycle_shuffle,  ///< off, tracks, albums
    set_shuffle,    ///< a `shuffle_mode`
    toggle_stop_after,
    rate,  ///< 1 to 5; 0 removes the rating. Carried out by the components
    quit,
    make_way,  ///< the playback ends, for another one
};

struct request {
    action what;
    /// As the action says; 0 where it says nothing.
    double amount = 0;
};

}  // namespace ostrevan::playback
