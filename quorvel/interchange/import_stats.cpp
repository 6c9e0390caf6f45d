#include "quorvel/interchange/import_stats.h"

#include <array>

#include "quorvel/interchange/import_numbers.h"

namespace quorvel {
namespace {

struct value_attribute {
    ExportFields field;
    const char* name;
    std::uint64_t t_playback_stats::*value;
};
/// In the order in which they are read; the rating comes last.
constexpr std::array value_attributes{
    value_attribute{export_play_count, "Count", &t_playback_stats::play_count},
    value_attribute{export_first_played, "FirstPlayed", &t_playback_stats::first_played},
    value_attribute{export_last_played, "LastPlayed", &t_playback_stats::last_played},
    value_attribute{export_added, "Added", &t_playback_stats::added},
};
constexpr const char* rating_attribute = "Rating";

}  // namespace

void ImportedStats::replace_in(t_playback_stats& stored) const noexcept {
    for (const auto& attribute : value_attributes)
        if ((present & attribute.field) != 0) stored.*attribute.value = values.*attribute.value;
    if ((present & export_rating) != 0) stored.rating = values.rating;
}

ImportedStats read_stats(const Vek::xmlAttributes& attributes, std::uint32_t fields, rating_scale scale) {
    ImportedStats stats;
    const auto wanted = [&](ExportFields field, const char* name) -> const std::string* {
        const auto* const text = (fields & field) == 0 ? nullptr : attributes.find(name);
        if (text != nullptr) stats.present |= field;
        return text;
    };
    for (const auto& attribute : value_attributes)
        if (const auto* const text = wanted(attribute.field, attribute.name))
            stats.values.*attribute.value = parse_number<std::uint64_t>(*text);
    if (const auto* const text = wanted(export_rating, rating_attribute)) {
        const auto rating = parse_number<std::uint32_t>(*text);
        stats.values.rating = scale == rating_scale::stars ? rating_of_stars(rating) : rating;
    }
    return stats;
}

}  // namespace quorvel
