#include "player/app/record_columns.h"

#include <span>
#include <utility>

#include "player/view/columns.h"

namespace ostrevan::app {

record_columns::record_columns(session& player) : fields_(player.fields) {
    for (const auto& each : player.loop.call([&] { return view::all_columns(player.services); }))
        columns_.push_back({each.name, titleformat::compile(each.display_script)});
}

std::vector<std::string> record_columns::texts_with(const nuv::guid& index, std::uint64_t key,
                                                    const std::optional<std::vector<std::byte>>& record,
                                                    const metadb_handle_ptr& track) const {
    const services::assumed_record assumed(index, key,
                                           record ? std::span<const std::byte>(*record) : std::span<const std::byte>());
    const titleformat::track_fields fields(fields_, *track);
    std::vector<std::string> texts;
    texts.reserve(columns_.size());
    for (const auto& each : columns_) texts.push_back(each.shown.run(fields).text);
    return texts;
}

std::vector<column_change> record_columns::changed(const nuv::guid& index, const index::record_change& change,
                                                   const metadb_handle_ptr& track) const {
    const auto before = texts_with(index, change.key, change.before, track);
    const auto after = texts_with(index, change.key, change.after, track);
    std::vector<column_change> changed;
    for (std::size_t i = 0; i < columns_.size(); ++i)
        if (before[i] != after[i]) changed.push_back({columns_[i].name, before[i], after[i]});
    return changed;
}

std::vector<column_change> record_columns::filled(const services::index_manager_impl::registration& index,
                                                  std::vector<std::byte> record) const {
    const auto stand_in = service_new<library::track>(playable_location{});
    stand_in->publish(library::make_snapshot({}));
    const auto key = services::index_manager_impl::key_of(index, *stand_in);
    return changed(index.index, {.key = key.value_or(0), .after = std::move(record)}, stand_in);
}

}  // namespace ostrevan::app
