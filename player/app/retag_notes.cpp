#include "player/app/retag_notes.h"

#include <algorithm>
#include <string>

#include "player/app/changed_records.h"
#include "player/app/record_columns.h"

namespace ostrevan::app {
namespace {

/// A track as it will be: with the key of its new tags, which is that of the merged record.
std::string described(const record_columns& columns, const services::index_manager_impl::registration& index,
                      const index::record_change& merge) {
    std::string text;
    const auto before = columns.filled(index, *merge.before), after = columns.filled(index, *merge.after);
    for (const auto& each : after) {
        const auto former = std::ranges::find(before, each.name, &column_change::name);
        if (former == before.end()) text += "  " + each.name + " " + each.before + " -> " + each.after;
        else if (former->after != each.after) text += "  " + each.name + " " + former->after + " -> " + each.after;
    }
    return text;
}

}  // namespace

std::size_t note_retags(session& player, const std::vector<retag>& retags,
                        const std::function<void(const std::string& line)>& note) {
    if (retags.empty()) return 0;
    constexpr std::size_t most = 10;
    const record_columns columns(player);
    std::size_t shared = 0, told = 0;
    for (const auto& index : player.index.registrations()) {
        std::vector<std::uint64_t> keys;
        for (const auto& each : retags)
            if (each.index == index.index) keys.push_back(each.merge.key);
        const auto owners = tracks_with_keys(player, index.index, keys);
        for (const auto& each : retags) {
            if (each.index != index.index) continue;
            const auto owner = std::ranges::find_if(
                owners, [&](const keyed_track& other) { return other.key == each.merge.key && other.track != each.track; });
            const auto other = owner != owners.end() ? owner->track : each.other;
            if (other) ++shared;
            else if (each.merge.before == each.merge.after) continue;
            if (++told > most) continue;
            const auto merged = described(columns, index, each.merge);
            auto text =
                each.track->location().path + (other ? ": its new tags are those of " + other->location().path + "."
                                                     : ": its new tags have statistics already, which no track has now.");
            if (!merged.empty()) text += (other ? " The statistics become one:" : " They become:") + merged;
            note(text);
        }
    }
    if (told > most) note("... and " + std::to_string(told - most) + " more.");
    return shared;
}

}  // namespace ostrevan::app
