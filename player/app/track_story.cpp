#include "player/app/track_story.h"

#include <algorithm>
#include <span>

#include "player/titleformat/script.h"

namespace ostrevan::app {
namespace {

using record = std::optional<std::vector<std::byte>>;

std::vector<std::string> texts_with(const nuv::guid& index, std::uint64_t key, const record& bytes,
                                    const metadb_handle_ptr& track, const std::vector<view::column>& columns,
                                    const titleformat::component_fields& fields) {
    const services::assumed_record assumed(index, key,
                                           bytes ? std::span<const std::byte>(*bytes) : std::span<const std::byte>());
    std::vector<std::string> texts;
    texts.reserve(columns.size());
    for (const auto& column : columns)
        texts.push_back(titleformat::compile(column.display_script).run(titleformat::track_fields(fields, *track)).text);
    return texts;
}

std::string heard(const index::listen& what) {
    const auto by = what.player.empty() ? "" : " in " + what.player;
    const auto seconds = static_cast<long long>(what.seconds);
    return (what.is_counted ? "played" : "skipped") + by + ", " + std::to_string(seconds) + " s heard";
}

}  // namespace

std::vector<column_change> seen_in_columns(const nuv::guid& index, const index::record_change& change,
                                           const metadb_handle_ptr& track, const std::vector<view::column>& columns,
                                           const titleformat::component_fields& fields) {
    const auto before = texts_with(index, change.key, change.before, track, columns, fields);
    const auto after = texts_with(index, change.key, change.after, track, columns, fields);
    std::vector<column_change> changed;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (before[i] != after[i]) changed.push_back({columns[i].name, before[i], after[i]});
    return changed;
}

std::vector<story_event> story_of(const metadb_handle_ptr& track, index::journal& journal,
                                  const std::vector<services::index_manager_impl::registration>& indexes,
                                  const std::vector<view::column>& columns, const titleformat::component_fields& fields) {
    std::vector<story_event> story;
    for (const auto& registered : indexes) {
        const auto key = services::index_manager_impl::key_of(registered, *track);
        if (!key) continue;
        auto listens = journal.listens_of(registered.index, *key);
        for (const auto& each : journal.changes_of(registered.index, *key)) {
            const auto play = std::ranges::find(listens, each.by.id, &index::listen::act);
            story.push_back({each.by.time, each.by.id, play == listens.end() ? each.by.cause : heard(*play),
                             seen_in_columns(registered.index, each.change, track, columns, fields),
                             each.by.undone_by.has_value()});
            if (play != listens.end()) listens.erase(play);
        }
        if (&registered != &indexes.front()) continue;
        // Changes stay in their order, whatever the clock has said.
        for (const auto& each : listens)
            story.insert(std::ranges::find_if(story, [&](const story_event& other) { return other.time <= each.time; }),
                         {each.time, 0, heard(each)});
    }
    return story;
}

}  // namespace ostrevan::app
