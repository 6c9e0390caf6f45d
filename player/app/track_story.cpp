#include "player/app/track_story.h"

#include <algorithm>

namespace ostrevan::app {
namespace {

std::string heard(const index::listen& what) {
    const auto by = what.player.empty() ? "" : " in " + what.player;
    const auto seconds = static_cast<long long>(what.seconds);
    return (what.is_counted ? "played" : "skipped") + by + ", " + std::to_string(seconds) + " s heard";
}

}  // namespace

std::vector<story_event> story_of(const metadb_handle_ptr& track, index::journal& journal,
                                  const std::vector<services::index_manager_impl::registration>& indexes,
                                  const record_columns& columns) {
    std::vector<story_event> story;
    for (const auto& registered : indexes) {
        const auto key = services::index_manager_impl::key_of(registered, *track);
        if (!key) continue;
        auto listens = journal.listens_of(registered.index, *key);
        for (const auto& each : journal.changes_of(registered.index, *key)) {
            const auto play = std::ranges::find(listens, each.by.id, &index::listen::act);
            story.push_back({each.by.time, each.by.id, play == listens.end() ? each.by.cause : heard(*play),
                             columns.changed(registered.index, each.change, track), each.by.undone_by.has_value()});
            if (play != listens.end()) listens.erase(play);
        }
        if (&registered != &indexes.front()) continue;
        // Changes stay in their order, whatever the clock has said.
        for (const auto& each : listens)
            story.insert(std::ranges::find_if(story, [&](const story_event& other) { return other.time <= each.time; }),
                         {each.time, 0, heard(each), {}, each.act < 0});
    }
    return story;
}

}  // namespace ostrevan::app
