#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "ostrevan/registration.h"
#include "quorvel/common/shared_tracks.h"
#include "quorvel/host/context_command_table.h"
#include "quorvel/host/edit_rating.h"
#include "quorvel/store/pcdb.h"

namespace quorvel {
namespace {

using ostrevan::context_menu_node;
using ostrevan::metadb_handle_list_cref;

constexpr unsigned flags_unavailable = ostrevan::context_flag_disabled | ostrevan::context_flag_grayed;
constexpr unsigned flags_chosen = ostrevan::context_flag_checked | ostrevan::context_flag_radio;

constexpr const char* changes_rating = "Changes rating of the specified items.";

/// The submenu, in its order. `stars` is the value that an entry sets; an entry with a step moves the rating by so many
/// stars instead.
struct rating_entry {
    nuv::guid id;
    const char* text;
    const char* description;
    std::uint32_t stars;
    std::int32_t step = 0;
};
constexpr std::array rating_entries{
    rating_entry{nuv::guid_of("{1E33065E-B6BC-4970-8035-D760695C3F90}"), "<not set>", changes_rating, rating_not_set},
    rating_entry{nuv::guid_of("{4C26AAFC-7FAD-44A0-8859-2419281BB836}"), "1", changes_rating, 1},
    rating_entry{nuv::guid_of("{827A703C-1D71-4542-81AD-67742BAA01B1}"), "2", changes_rating, 2},
    rating_entry{nuv::guid_of("{6DF20AF6-7B20-45B4-9427-1D155C11B036}"), "3", changes_rating, 3},
    rating_entry{nuv::guid_of("{56D43427-5F32-49F0-ABFA-2C4CC4BCB2C1}"), "4", changes_rating, 4},
    rating_entry{nuv::guid_of("{9E15E290-2529-40C9-B6F2-F71778871855}"), "5", changes_rating, 5},
    rating_entry{nuv::guid_of("{479DF963-FF86-4C93-84B8-BC33E9B3814C}"), "-",
                 "Decreases rating of the specified items by one.", rating_not_set, -1},
    rating_entry{nuv::guid_of("{3AEF56A1-03A5-4EB7-AE6C-7AE32B4847D6}"), "+",
                 "Increases rating of the specified items by one.", rating_not_set, +1},
};

/// The stars that all selected tracks share, `rating_not_set`, or this.
constexpr std::uint32_t stars_differ = 0xFFFFFFFE;
/// From this many tracks on no record is read, because that would delay the menu.
constexpr std::size_t too_many_to_read = 1000;

std::uint32_t common_stars(metadb_handle_list_cref items) {
    std::uint32_t common = rating_not_set;
    for (std::size_t i = 0; i < items.get_count(); ++i) {
        const std::uint32_t rating = PCDB::Get(*items[i]).rating;
        const std::uint32_t stars = rating == rating_not_set ? rating_not_set : stars_of(rating);
        if (i == 0) common = stars;
        else if (stars != common) return stars_differ;
    }
    return common;
}

void execute(const rating_entry& entry, metadb_handle_list_cref items) {
    editRating(items, entry.stars == rating_not_set ? rating_not_set : rating_of_stars(entry.stars), entry.step);
}

class entry_node : public context_menu_node {
public:
    entry_node(const rating_entry& entry, shared_tracks tracks, bool enabled, bool checked) noexcept
        : entry_(&entry), tracks_(std::move(tracks)), enabled_(enabled), checked_(checked) {}

    bool get_display(display_t& out) override {
        out = {entry_->text, (enabled_ ? 0 : flags_unavailable) | (checked_ ? flags_chosen : 0)};
        return true;
    }
    nuv::guid id() const noexcept override { return entry_->id; }
    std::string description() const override { return entry_->description; }
    void execute() override {
        if (enabled_ && !checked_) quorvel::execute(*entry_, *tracks_);
    }

private:
    const rating_entry* entry_;
    shared_tracks tracks_;
    bool enabled_;
    bool checked_;
};

class root_node : public context_menu_node {
public:
    root_node(const context_command_entry& item, metadb_handle_list_cref items, bool enumerating)
        : item_(&item), hidden_(items.empty() && !enumerating), enabled_(enumerating || !items.empty()) {
        const bool readable = !enumerating && items.get_count() < too_many_to_read;
        const std::uint32_t current = readable ? common_stars(items) : rating_not_set;
        const auto tracks = share_tracks(items);
        children_.reserve(rating_entries.size());
        for (const auto& entry : rating_entries)
            children_.emplace_back(entry, tracks, enabled_, entry.step == 0 && entry.stars == current);
    }

    bool get_display(display_t& out) override {
        if (hidden_) return false;
        out = {item_->name, enabled_ ? 0 : flags_unavailable};
        return true;
    }
    std::size_t child_count() const noexcept override { return children_.size(); }
    context_menu_node& child(std::size_t index) override {
        if (index >= children_.size()) ostrevan::uBugCheck();
        return children_[index];
    }
    nuv::guid id() const noexcept override { return item_->id; }
    std::string description() const override { return item_->description; }

private:
    const context_command_entry* item_;
    bool hidden_;
    bool enabled_;
    std::vector<entry_node> children_;
};

constexpr std::array rating_item{context_command_entry{
    .name = "Rating",
    .id = nuv::guid_of("{15D9655C-F6DE-4B98-8942-A9DAE2F9AD75}"),
    .description = changes_rating,
    .execute = [](metadb_handle_list_cref) {},  // only the entries of its submenu do something
}};

class contextmenu_rating : public context_command_table {
public:
    contextmenu_rating() noexcept
        : context_command_table(nuv::guid_of("{42820296-C3B6-4B24-9229-4B78938B2258}"), rating_item) {}

    bool item_get_display_data(context_menu_node::display_t& out, std::size_t index, metadb_handle_list_cref items,
                               const nuv::guid& caller) override {
        out = {entry(index).name, 0};
        return !items.empty() || caller == ostrevan::context_caller::command_enumeration;
    }

    std::unique_ptr<context_menu_node> make_node(std::size_t index, metadb_handle_list_cref items,
                                                 const nuv::guid& caller) override {
        ostrevan::core_api::ensure_main_thread();
        return std::make_unique<root_node>(entry(index), items, caller == ostrevan::context_caller::command_enumeration);
    }

    void context_command_by_node(std::size_t index, const nuv::guid& node, metadb_handle_list_cref items,
                                 const nuv::guid& /*caller*/) override {
        (void)entry(index);
        const auto found = std::ranges::find(rating_entries, node, &rating_entry::id);
        if (found != rating_entries.end()) execute(*found, items);
    }
};

ostrevan::service_factory_single_t<contextmenu_rating> g_contextmenu_rating;

}  // namespace
}  // namespace quorvel
