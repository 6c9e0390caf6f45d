#include "player/app/play_counting.h"

#include <memory>
#include <utility>

#include "player/core/cause.h"

namespace ostrevan::app {

std::string play_verdict::reason() const {
    std::string text;
    for (const auto& each : reasons)
        if (!each.empty()) text += (text.empty() ? "" : "; ") + each;
    return text.empty() ? "no component counts plays" : text;
}

void tell_of_play(core::main_loop& loop, const core::service_registry& services, const metadb_handle_ptr& track,
                  std::function<void(const play_verdict&)> settled) {
    const core::cause_scope why("play");
    const auto verdict = std::make_shared<play_verdict>();
    services.for_each<playback_statistics_collector>(
        [&](playback_statistics_collector& collector) {
            const auto slot = verdict->reasons.size();
            verdict->reasons.push_back(core::module_of(typeid(collector)) + " does not say that it counted it");
            const auto outcomes = query_service<playback_statistics_outcome>(collector);
            if (!outcomes) return collector.on_item_played(track);
            outcomes->on_item_played(track, [verdict, slot](play_outcome outcome, const char* reason) {
                verdict->is_counted |= outcome == play_outcome::counted;
                verdict->has_failed |= outcome == play_outcome::failed;
                verdict->reasons[slot] = reason == nullptr ? "" : reason;
            });
        },
        "counting a play");
    loop.post([verdict, settled = std::move(settled)] { settled(*verdict); });
}

}  // namespace ostrevan::app
