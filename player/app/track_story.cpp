#include "player/app/track_story.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace ostrevan::app {
namespace {

std::string heard(const index::listen& what) {
    const auto by = what.player.empty() ? "" : " in " + what.player;
    const auto seconds = static_cast<long long>(what.seconds);
    return (what.is_counted ? "played" : "skipped") + by + ", " + std::to_string(seconds) + " s heard";
}

/// What the journal says of a track in one index, by its key and by those that it had before its tags were edited.
struct past {
    std::vector<index::change_of_record> changes{};  // by the key of today; the newest first, as the listens
    std::vector<index::listen> listens{};
};

past past_of(index::journal& journal, const nuv::guid& index, std::uint64_t key) {
    past all;
    for (const auto each : journal.successors_in(index).leading_to(key)) {
        std::ranges::move(journal.listens_of(index, each), std::back_inserter(all.listens));
        for (auto& change : journal.changes_of(index, each)) {
            // A record that was merged and removed shows in the change of the other one.
            if (each != key && !change.change.after) continue;
            change.change.key = key;
            all.changes.push_back(std::move(change));
        }
    }
    std::ranges::stable_sort(all.changes, std::greater(), [](const auto& each) { return each.by.id; });
    std::ranges::sort(all.listens, std::greater(), &index::listen::id);
    return all;
}

}  // namespace

std::vector<story_event> story_of(const metadb_handle_ptr& track, index::journal& journal,
                                  const std::vector<services::index_manager_impl::registration>& indexes,
                                  const record_columns& columns) {
    std::vector<story_event> story;
    for (const auto& registered : indexes) {
        const auto key = services::index_manager_impl::key_of(registered, *track);
        if (!key) continue;
        auto [changes, listens] = past_of(journal, registered.index, *key);
        for (const auto& each : changes) {
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
