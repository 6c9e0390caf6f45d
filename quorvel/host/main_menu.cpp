#include "ostrevan/main_menu.h"

#include <array>
#include <exception>
#include <optional>
#include <string>

#include "ostrevan/core_api.h"
#include "ostrevan/library.h"
#include "ostrevan/library_search.h"
#include "ostrevan/popup.h"
#include "ostrevan/registration.h"
#include "quorvel/common/settings.h"
#include "quorvel/interchange/export_dialog.h"
#include "quorvel/interchange/import_command.h"

namespace quorvel {
namespace {

using ostrevan::library_search;
using ostrevan::popup_message;

/// One command. The player keeps shortcuts under `id`, so it never changes. `flags` returns how it is shown now, or none to
/// hide it.
struct main_menu_entry {
    const char* name;
    nuv::guid id;
    const char* description;
    std::optional<unsigned> (*flags)();
    void (*execute)();
};

/// Also hidden when there are several search windows, because any of them could be meant.
std::optional<unsigned> flags_of_search() {
    std::size_t windows = 0;
    ostrevan::for_each_service<library_search>([&](library_search&) { ++windows; });
    if (windows != 1) return std::nullopt;
    const auto library = ostrevan::find_service<ostrevan::library_manager>();
    return library && library->is_library_enabled() ? 0U : ostrevan::main_menu_flag_disabled;
}

std::optional<unsigned> flags_of_monitoring() { return monitoring_enabled.get() ? ostrevan::main_menu_flag_checked : 0U; }

std::optional<unsigned> always_enabled() { return 0U; }

void search_library(const char* query) {
    try {
        ostrevan::get_service<library_search>()->show(query);
    } catch (const std::exception& e) {
        const std::string text = std::string("Could not activate Media Library Search: ") + e.what();
        ostrevan::get_service<popup_message>()->show(text.c_str(), "Information", popup_message::icon_error);
    }
}

constexpr std::array main_menu_entries{
    main_menu_entry{"Show recently played", nuv::guid_of("{143BCCD5-28BE-47A6-BEE0-DFF823907BB0}"),
                    "Shows tracks from your Media Library played during last week.", flags_of_search,
                    [] { search_library("%last_played% DURING LAST 1 WEEK SORT DESCENDING BY %last_played%"); }},
    main_menu_entry{"Show recently added", nuv::guid_of("{F64C27E0-C5B8-4675-B62C-EF1A79CA147E}"),
                    "Shows tracks recently added to your Media Library.", flags_of_search,
                    [] { search_library("%added% DURING LAST 1 WEEK SORT DESCENDING BY %added%"); }},
    main_menu_entry{
        "Monitor playing tracks", nuv::guid_of("{764E7F3A-7643-4126-9FA2-2C3AC3671589}"),
        "Toggles monitoring of currently played tracks and updates of first played, last played and played count "
        "values.",
        flags_of_monitoring, [] { monitoring_enabled.set(!monitoring_enabled.get()); }},
    main_menu_entry{"Export statistics...", nuv::guid_of("{F1BB49EF-68F3-4BFD-BC16-120046E27A6E}"),
                    "Exports playback statistics into an XML file.", always_enabled,
                    [] { pcdb_export::open_export_dialog(); }},
    main_menu_entry{"Import statistics...", nuv::guid_of("{5622641A-1C18-450C-8E2F-48863AA0307F}"),
                    "Imports playback statistics from an XML file.", always_enabled, pcdb_export::importStatistics},
};

const main_menu_entry& entry_at(std::size_t index) {
    if (index >= main_menu_entries.size()) ostrevan::uBugCheck();
    return main_menu_entries[index];
}

class main_menu_playcount : public ostrevan::main_menu_commands {
public:
    std::size_t get_command_count() const noexcept override { return main_menu_entries.size(); }
    nuv::guid get_command(std::size_t index) const override { return entry_at(index).id; }
    std::string get_name(std::size_t index) const override { return entry_at(index).name; }
    bool get_description(std::size_t index, std::string& out) const override {
        out = entry_at(index).description;
        return true;
    }
    nuv::guid get_parent() const noexcept override { return nuv::guid_of("{A2260154-F88C-4FE3-8872-AABA85A63C1E}"); }
    bool get_display(std::size_t index, display_t& out) const override {
        const auto flags = entry_at(index).flags();
        if (!flags) return false;
        out = {entry_at(index).name, *flags};
        return true;
    }
    void execute(std::size_t index) override { entry_at(index).execute(); }
};

ostrevan::service_factory_single_t<main_menu_playcount> g_main_menu_playcount;

}  // namespace
}  // namespace quorvel
