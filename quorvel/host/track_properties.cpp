#include "ostrevan/track_properties.h"

#include <string>

#include "ostrevan/registration.h"
#include "quorvel/host/selection_summary.h"
#include "quorvel/host/stars.h"
#include "quorvel/store/timestamp.h"

namespace quorvel {
namespace {

constexpr const char* group = "Playback Statistics";

struct row {
    const char* name;
    double priority;
};
constexpr row played{"Played", 0.0};
constexpr row first_played{"First played", 1.0};
constexpr row last_played{"Last played", 2.0};
constexpr row added{"Added", 3.0};
constexpr row rating{"Rating", 4.0};

std::string times(std::uint64_t count) { return count == 1 ? "1 time" : std::to_string(count) + " times"; }

std::string time_span(std::uint64_t from, std::uint64_t to) {
    std::string text(FormatTimestamp(from).view());
    if (to != 0 && to != from) text.append(" - ").append(FormatTimestamp(to).view());
    return text;
}

class statistics_property_provider : public ostrevan::track_property_provider {
public:
    void enumerate_groups(ostrevan::metadb_handle_list_cref tracks, ostrevan::track_property_groups& groups,
                          ostrevan::track_property_sink& out) override {
        if (groups.on_group(group)) enumerate_properties(tracks, out);
    }

    void enumerate_properties(ostrevan::metadb_handle_list_cref tracks, ostrevan::track_property_sink& out) override {
        const auto sum = summarise(tracks);
        const auto write = [&out](const row& where, const std::string& text) {
            out.set_property(group, where.priority, where.name, text.c_str());
        };
        if (sum.play_count != 0) write(played, times(sum.play_count));
        if (sum.last_played != 0) write(last_played, FormatTimestamp(sum.last_played).c_str());
        if (sum.first_played != 0) write(first_played, FormatTimestamp(sum.first_played).c_str());
        if (sum.first_added != 0) write(added, time_span(sum.first_added, sum.last_added));
        if (sum.rating != rating_not_set) write(rating, std::string(five_stars(stars_of(sum.rating))));
    }
};

ostrevan::service_factory_single_t<statistics_property_provider> g_property_provider;

}  // namespace
}  // namespace quorvel
