#pragma once

#include <memory>
#include <string>

#include "player/watch/observation_queue.h"
#include "player/watch/source_thread.h"

namespace ostrevan::watch {

/// Tells what the Music Player Daemon does. It is found as its clients do: by MPD_HOST (with a password before "@") and
/// MPD_PORT, else by its usual sockets and on this machine. `music_folder` is its folder of music; when empty, the daemon is
/// asked, which tells clients on a local socket only.
std::unique_ptr<source_thread> watch_mpd(observation_queue& out, std::string music_folder);

}  // namespace ostrevan::watch
