#include "quorvel/store/mappings.h"

#include <array>
#include <cmath>

#include "nuv/text.h"

namespace quorvel {
namespace {

using ostrevan::file_info;

/// The artist is the first of these that a track has.
constexpr std::array<std::string_view, 4> artist_fields{"album artist", "artist", "composer", "performer"};
/// Lengths are counted in frames of a compact disc.
constexpr double frames_per_second = 75;

/// True when there is such a field, even one without values.
bool feed_field(unit_digest& digest, const file_info& info, std::string_view name) {
    const std::size_t field = info.meta_find(name);
    if (field == file_info::npos) return false;
    for (const auto value : info.meta_values(field)) digest.feed_text(value);
    return true;
}

bool feed_artist(unit_digest& digest, const file_info& info) {
    for (const auto name : artist_fields)
        if (feed_field(digest, info, name)) return true;
    return false;
}

std::optional<std::string_view> value_at(const file_info& info, std::string_view name, std::size_t index) {
    const std::size_t field = info.meta_find(name);
    if (field == file_info::npos || index >= info.meta_value_count(field)) return std::nullopt;
    return info.meta_value(field, index);
}

/// The first disc feeds nothing, as if the album had no discs.
void feed_disc(unit_digest& digest, std::optional<std::string_view> disc) {
    if (!disc) return;
    const auto number = without_leading_zeros(*disc);
    if (number == "1") return;
    digest.feed_text(number);
    digest.feed(unit_digest::separator);
}

std::uint32_t frames(double seconds) noexcept {
    return seconds > 0 ? static_cast<std::uint32_t>(std::lround(seconds * frames_per_second)) : 0;
}

}  // namespace

std::uint64_t tag_mapping::key_of(const file_info& info, const ostrevan::playable_location& location) {
    unit_digest digest(hash_);
    const bool has_artist = feed_artist(digest, info);
    digest.feed(unit_digest::separator);
    const bool has_album = feed_field(digest, info, "album");
    digest.feed(unit_digest::separator);
    feed_field(digest, info, "date");
    digest.feed(unit_digest::separator);

    bool named = has_album && feed_track_part(digest, info);
    if (!named) {
        named = feed_field(digest, info, "title");
        if (!named) digest.feed_text(nuv::file_name_of(location.path));
    }
    if (!has_artist || !named) digest.feed(frames(info.length()));
    return digest.finish();
}

bool TitleMapping::feed_track_part(unit_digest& digest, const file_info& info) const {
    if (const auto track = value_at(info, "tracknumber", 0)) {
        digest.feed_number(*track);
        digest.feed(unit_digest::separator);
    }
    feed_disc(digest, value_at(info, "discnumber", 0));
    return false;
}

bool LegacyTrackMapping::feed_track_part(unit_digest& digest, const file_info& info) const {
    const auto track = value_at(info, "tracknumber", 1);
    if (!track) return false;
    feed_disc(digest, value_at(info, "discnumber", 1));
    digest.feed_number(*track);
    return true;
}

bool RepeatedTrackMapping::feed_track_part(unit_digest& digest, const file_info& info) const {
    const auto track = value_at(info, "tracknumber", 0);
    if (track) {
        digest.feed_number(*track);
        digest.feed(unit_digest::separator);
    }
    feed_disc(digest, value_at(info, "discnumber", 0));
    if (track) digest.feed_number(*track);
    return track.has_value();
}

}  // namespace quorvel
