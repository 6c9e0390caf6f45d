#include "ostrevan/library_columns.h"

#include <algorithm>
#include <array>

#include "ostrevan/core_api.h"
#include "ostrevan/registration.h"
#include "quorvel/host/edit_rating.h"
#include "quorvel/host/stars.h"
#include "quorvel/store/pcdb.h"

namespace quorvel {
namespace {

struct statistics_column {
    nuv::guid id;
    const char* name;
    const char* display_script;
    const char* sort_script;
};

/// The player keeps the layout of lists under these identifiers, so they never change.
constexpr std::array statistics_columns{
    statistics_column{nuv::guid_of("{A07A0249-0D0F-4EBF-9575-59BD44C14907}"), "Play Count", "%play_count%", "%play_count%"},
    statistics_column{nuv::guid_of("{3BAEAC90-3F85-4DC0-AE77-9C2158C2330A}"), "First Played", "%first_played%",
                      "%first_played%"},
    statistics_column{nuv::guid_of("{9F99DA29-85AA-42A7-9072-7AE828B976EA}"), "Last Played", "%last_played%",
                      "%last_played%"},
    statistics_column{nuv::guid_of("{BAF96414-7279-4471-8ADD-FD6CAFECC9CB}"), "Date Added", "%added%", "%added%"},
    statistics_column{nuv::guid_of("{BCA594F2-7566-4D29-B465-2A8A94F87E51}"), "Rating", "%rating_stars_fixed%", "%rating%"},
};
constexpr std::size_t rating_column = 4;

const statistics_column& column_at(std::size_t index) {
    if (index >= statistics_columns.size()) ostrevan::uBugCheck();
    return statistics_columns[index];
}

/// A click on a star gives the tracks so many.
class rating_clicks : public ostrevan::library_column_clicks {
public:
    std::string get_click_text(std::size_t index) const override {
        return index == rating_column ? std::string(five_stars(0)) : std::string();
    }
    void on_click(std::size_t index, double place, ostrevan::metadb_handle_list_cref tracks) override {
        if (index != rating_column) return;
        constexpr double most_stars = 5;
        const auto before = static_cast<std::uint32_t>(std::clamp(place, 0.0, 1.0) * most_stars);
        const auto stars = std::min(before, 4U) + 1;
        // As an entry of the menu that is checked: a finer rating with these stars stays.
        const bool is_shown = std::all_of(tracks.begin(), tracks.end(), [stars](const auto& track) {
            const auto rating = PCDB::Get(*track).rating;
            return rating != rating_not_set && stars_of(rating) == stars;
        });
        if (!is_shown) editRating(tracks, rating_of_stars(stars), 0);
    }
};

class statistics_column_provider : public ostrevan::library_column_provider {
public:
    std::size_t get_column_count() const noexcept override { return statistics_columns.size(); }
    nuv::guid get_column_id(std::size_t index) const override { return column_at(index).id; }
    std::string get_column_name(std::size_t index) const override { return column_at(index).name; }
    std::string get_display_script(std::size_t index) const override { return column_at(index).display_script; }
    std::string get_sort_script(std::size_t index) const override { return column_at(index).sort_script; }
    /// Returns flags for any index.
    unsigned get_column_flags(std::size_t index) const override {
        return index == rating_column ? 0U : ostrevan::column_align_right;
    }
    ostrevan::service_base* service_query(const nuv::guid& id) noexcept override {
        return id == ostrevan::library_column_clicks::class_guid ? &clicks_ : nullptr;
    }

private:
    ostrevan::service_uncounted_t<rating_clicks> clicks_;
};

ostrevan::service_factory_single_t<statistics_column_provider> g_column_provider;

}  // namespace
}  // namespace quorvel
