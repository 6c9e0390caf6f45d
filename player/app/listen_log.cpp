#include "player/app/listen_log.h"

#include <ctime>
#include <span>
#include <utility>

#include "player/core/cause.h"

namespace ostrevan::app {

void listen_log::note_play(const metadb_handle_ptr& track, double seconds, const std::string& player) {
    if (records_.is_read_only()) return;
    index::listen heard{.time = std::time(nullptr),
                        .path = track->location().path,
                        .subsong = track->location().subsong,
                        .seconds = seconds,
                        .player = player,
                        .is_counted = true};
    for (const auto& each : index_.registrations())
        if (const auto key = services::index_manager_impl::key_of(each, *track)) heard.keys.push_back({each.index, *key});
    const auto& why = core::cause_scope::current();
    known_.note(std::span(&track, 1));
    records_.note(std::move(heard), why ? why->number : 0);
}

}  // namespace ostrevan::app
