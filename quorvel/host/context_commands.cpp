#include <array>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/registration.h"
#include "ostrevan/tag_update.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/settings.h"
#include "quorvel/common/shared_tracks.h"
#include "quorvel/host/context_command_table.h"
#include "quorvel/interchange/clipboard_transfer.h"
#include "quorvel/interchange/export_dialog.h"
#include "quorvel/platform/clipboard.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/tag_sync.h"

namespace quorvel {
namespace {

using ostrevan::info_reload_service;
using ostrevan::metadb_handle_list_cref;
using ostrevan::popup_message_v3;

/// Whether to clear file tags, too, is decided before the question, because its text says so.
void reset_statistics(metadb_handle_list_cref items) {
    if (items.empty()) return;
    const bool clear_tags = tag_sync_enabled.get();
    ask(clear_tags ? "This will reset playback statistics for selected items and rewrite file tags removing statistics info "
                     "from them. Continue?"
                   : "This will reset playback statistics for selected items. Continue?",
        message_title, popup_message_v3::style_ok_cancel | popup_message_v3::style_icon_warning,
        [tracks = share_tracks(items), clear_tags, window = ostrevan::core_api::main_window()](unsigned answer) {
            if (answer != popup_message_v3::answer_ok) return;
            PCDB::Reset(*tracks);
            if (clear_tags) PCDB_clear_tags(*tracks, window);
        });
}

void paste_statistics(metadb_handle_list_cref items) { (void)pasteStatistics(items); }

void write_tags(metadb_handle_list_cref items) {
    ask("This will update file tags with playback statistics info. Continue?", message_title,
        popup_message_v3::style_ok_cancel, [tracks = share_tracks(items)](unsigned answer) {
            if (answer == popup_message_v3::answer_ok) PCDB_stamp_tags(*tracks, 0, nullptr);
        });
}

class import_when_read : public ostrevan::completion_notify {
public:
    explicit import_when_read(shared_tracks tracks) noexcept : tracks_(std::move(tracks)) {}
    void on_completion(unsigned status) override {
        if (status == status_success) PCDB::ImportFromTags(*tracks_);
    }

private:
    shared_tracks tracks_;
};

/// The files are read again first, because other programs may have edited their tags.
void import_tags(metadb_handle_list_cref items) {
    const auto reload = ostrevan::find_service<info_reload_service>();
    if (!reload) throw ostrevan::exception_service_extension_not_found();
    reload->reload_async(items, info_reload_service::mode_force, ostrevan::core_api::main_window(),
                         info_reload_service::option_delayed_progress,
                         ostrevan::service_new<import_when_read>(share_tracks(items)));
}

constexpr std::array statistics_commands{
    context_command_entry{"Reset statistics", nuv::guid_of("{0D6BCB34-1660-4862-912B-A8CA3BC735F2}"),
                          "Resets playback statistics for one or more the selected items.", reset_statistics},
    context_command_entry{"Copy statistics", nuv::guid_of("{0B797ADD-4FD1-479F-8A37-E8B3491FD630}"),
                          "Copies playback statistics of the selected tracks to the Windows Clipboard.", copyStatistics},
    context_command_entry{"Paste statistics", nuv::guid_of("{7E4DC828-6D2C-487A-8B85-3F3EE4F54768}"),
                          "Overwrites playback statistics of the selected tracks with data stored in the Windows Clipboard.",
                          paste_statistics},
};
constexpr std::size_t paste_index = 2;

constexpr std::array file_commands{
    context_command_entry{"Write statistics to file tags", nuv::guid_of("{036E5B94-63B6-4282-BDF7-09BA8B543FFC}"),
                          "Writes playback statistics to file tags on the selected items.", write_tags},
    context_command_entry{"Import statistics from file tags", nuv::guid_of("{2A53B4AF-858A-4EEE-95D9-06A74A444F8F}"),
                          "Imports playback statistics from file tags on the selected items.", import_tags},
    context_command_entry{"Export statistics to XML...", nuv::guid_of("{B19A8824-41E3-48E6-A054-6A97A3B29899}"),
                          "Exports playback statistics of the selected tracks to an XML file.",
                          [](metadb_handle_list_cref items) { pcdb_export::open_export_dialog(items); }},
};

class contextmenu_playcount_1 : public context_command_table {
public:
    contextmenu_playcount_1() noexcept
        : context_command_table(nuv::guid_of("{2F8D7512-1810-41BE-9F86-B80643B28A19}"), statistics_commands) {}

    bool item_get_display_data(ostrevan::context_menu_node::display_t& out, std::size_t index, metadb_handle_list_cref items,
                               const nuv::guid& caller) override {
        if (!context_command_table::item_get_display_data(out, index, items, caller)) return false;
        if (index == paste_index && !clipboard::has_format(clipboard_format))
            out.flags |= ostrevan::context_flag_disabled | ostrevan::context_flag_grayed;
        return true;
    }
};

class contextmenu_playcount_2 : public context_command_table {
public:
    contextmenu_playcount_2() noexcept
        : context_command_table(nuv::guid_of("{9733E7C8-430B-4317-B2AA-7275F223D34B}"), file_commands) {}
};

ostrevan::service_factory_single_t<contextmenu_playcount_1> g_contextmenu_playcount_1;
ostrevan::service_factory_single_t<contextmenu_playcount_2> g_contextmenu_playcount_2;

}  // namespace
}  // namespace quorvel
