#include "ostrevan/track_properties.h"

#include <string>

#include "ostrevan/registration.h"
#include "quorvel/host/selection_summary.h"
#include "quorvel/host/stars.h"
#include "quorvel/store/timestamp.h"

namespace quorvel {
namespace {

constexpr const char* property_group = "Playback Statistics";

struct property_row {
    const char* name;
    double priority;
};
constexpr property_row played_row{"Played", 0.0};
constexpr property_row first_played_row{"First played", 1.0};
constexpr property_row last_played_row{"Last played", 2.0};
constexpr property_row added_row{"Added", 3.0};
constexpr property_row rating_row{"Rating", 4.0};

std::string play_count_text(std::uint64_t count) { return count == 1 ? "1 time" : std::to_string(count) + " times"; }

/// One time, or the first and the last of several.
std::string period_text(std::uint64_t first, std::uint64_t last) {
    std::string text(FormatTimestamp(first).view());
    if (last != 0 && last != first) text.append(" - ").append(FormatTimestamp(last).view());
    return text;
}

class statistics_property_provider : public ostrevan::track_property_provider {
public:
    void enumerate_groups(ostrevan::metadb_handle_list_cref tracks, ostrevan::track_property_groups& groups,
                          ostrevan::track_property_sink& out) override {
        if (groups.on_group(property_group)) enumerate_properties(tracks, out);
    }

    void enumerate_properties(ostrevan::metadb_handle_list_cref tracks, ostrevan::track_property_sink& out) override {
        const auto sum = summarise(tracks);
        const auto write = [&out](const property_row& row, const std::string& text) {
            out.set_property(property_group, row.priority, row.name, text.c_str());
        };
        if (sum.play_count != 0) write(played_row, play_count_text(sum.play_count));
        if (sum.last_played != 0) write(last_played_row, FormatTimestamp(sum.last_played).c_str());
        if (sum.first_played != 0) write(first_played_row, FormatTimestamp(sum.first_played).c_str());
        if (sum.first_added != 0) write(added_row, period_text(sum.first_added, sum.last_added));
        if (sum.rating != rating_not_set) write(rating_row, std::string(five_stars(stars_of(sum.rating))));
    }
};

ostrevan::service_factory_single_t<statistics_property_provider> g_property_provider;

}  // namespace
}  // namespace quorvel
