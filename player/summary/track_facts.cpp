#include "player/summary/track_facts.h"

#include <algorithm>

#include "player/titleformat/integer.h"

namespace ostrevan::summary {
namespace {

constexpr std::int64_t most_stars = 5;

std::string place_text(std::string_view path, std::uint32_t subsong) {
    return std::string(path).append("|").append(std::to_string(subsong));
}

std::string text_of(const titleformat::track_fields& fields, std::string_view name) {
    std::string text;
    return fields.field(name, text) ? text : std::string();
}

std::int64_t number_of(const titleformat::track_fields& fields, std::string_view name) {
    return std::max<std::int64_t>(titleformat::leading_integer(text_of(fields, name)).value_or(0), 0);
}

/// The field counts units of 100 ns since 1601-01-01 UTC.
std::optional<std::chrono::sys_seconds> time_of(const titleformat::track_fields& fields, std::string_view name) {
    using namespace std::chrono;
    constexpr std::uint64_t units_per_second = 10'000'000;
    constexpr sys_days start{year{1601} / 1 / 1};
    const auto value = fields.sort_value(name).value_or(0);
    return value == 0 ? std::nullopt : std::optional(start + seconds{value / units_per_second});
}

bool has_tag(const metadb_handle& track, std::string_view name) {
    const auto info = track.info();
    return info && info->info().meta_find(name) != file_info::npos;
}

track_facts facts_of(const metadb_handle_ptr& track, const titleformat::component_fields& published) {
    const titleformat::track_fields fields(published, *track);
    track_facts made{.track = track,
                     .artist = text_of(fields, "artist"),
                     .title = text_of(fields, "title"),
                     .album = text_of(fields, "album"),
                     .plays = static_cast<std::uint64_t>(number_of(fields, "play_count")),
                     .added = time_of(fields, "added"),
                     .last_played = time_of(fields, "last_played"),
                     .stars = static_cast<std::size_t>(std::min(number_of(fields, "rating"), most_stars))};
    // The album artist of a compilation is often missing, and its artists differ.
    const bool is_told = has_tag(*track, "album artist");
    if (is_told) made.album_artist = text_of(fields, "album artist");
    made.album_in_folder = made.album + '\n' + (is_told ? made.album_artist : text_of(fields, "directoryname"));
    return made;
}

}  // namespace

track_set::track_set(std::span<const metadb_handle_ptr> tracks, const titleformat::component_fields& fields,
                     const key_finder& key_of) {
    facts_.reserve(tracks.size());
    for (const auto& track : tracks) {
        auto place = facts_.size();
        if (const auto key = key_of(*track)) place = by_key_.try_emplace(*key, place).first->second;
        by_location_.emplace(place_text(track->location().path, track->location().subsong), place);
        if (place == facts_.size()) facts_.push_back(facts_of(track, fields));
    }
}

std::optional<std::size_t> track_set::find(const std::optional<std::uint64_t>& key, std::string_view path,
                                           std::uint32_t subsong) const {
    if (const auto found = key ? by_key_.find(*key) : by_key_.end(); found != by_key_.end()) return found->second;
    const auto found = by_location_.find(place_text(path, subsong));
    return found == by_location_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace ostrevan::summary
