#include "quorvel/interchange/export_dialog.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/file_dialog.h"
#include "ostrevan/library.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/shared_tracks.h"
#include "quorvel/interchange/exporter.h"
#include "quorvel/interchange/field_boxes.h"
#include "quorvel/platform/beep.h"
#include "quorvel/platform/dialog.h"

namespace quorvel::pcdb_export {
namespace {

using ostrevan::dialog_control;
using ostrevan::dialog_control_kind;
using ostrevan::dialog_window;

constexpr const char* export_title = "Export Playback Statistics";

constexpr int type_separator = 1001;
constexpr int library_only = 1003;
constexpr int full_backup = 1004;

constexpr auto selection_controls = controls_for_fields("Fields to export");
constexpr auto database_controls = [] {
    constexpr std::array type_controls{
        dialog_control{type_separator, dialog_control_kind::separator, "Export type"},
        dialog_control{library_only, dialog_control_kind::radio_button, "Statistics of current Media Library content only"},
        dialog_control{full_backup, dialog_control_kind::radio_button, "Full backup"},
    };
    std::array<dialog_control, type_controls.size() + selection_controls.size()> controls{};
    std::ranges::copy(selection_controls, std::ranges::copy(type_controls, controls.begin()).out);
    return controls;
}();

constexpr ostrevan::dialog_layout selection_layout{export_title, dialog_font, dialog_font_points, selection_controls};
constexpr ostrevan::dialog_layout database_layout{export_title, dialog_font, dialog_font_points, database_controls};

using destination_reply = decltype(ostrevan::file_dialog_service::query_t::reply);

void ask_for_destination(const dialog_window& window, destination_reply reply) {
    ostrevan::uGetOpenFileName({.parent = window.native(),
                                .filter = "XML files|*.xml",
                                .default_extension = "xml",
                                .title = export_title,
                                .save = true,
                                .reply = std::move(reply)});
}

void report_export_failure(const std::string& reason) { report_failure("Playback statistics export failure: " + reason); }

class export_dialog : public ostrevan::dialog_rules {
public:
    /// `selection` is empty for the whole database.
    explicit export_dialog(shared_tracks selection) noexcept : selection_(std::move(selection)) {}

    const ostrevan::dialog_layout& layout() const noexcept override {
        return selection_ ? selection_layout : database_layout;
    }

    void on_open(dialog_window& window) override {
        check_all_fields(window);
        if (selection_) return;
        const auto library = ostrevan::find_service<ostrevan::library_manager>();
        const bool has_library = library && library->is_library_enabled();
        window.set_checked(has_library ? library_only : full_backup, true);
        if (!has_library) window.set_enabled(library_only, false);
    }

    void on_button(dialog_window& window, int id) override {
        if (is_asking_) return;
        if (id == ostrevan::dialog_cancel) window.close();
        if (id == ostrevan::dialog_ok) ask_and_export(window);
    }
    void on_closed() noexcept override { is_closed_ = true; }

private:
    void ask_and_export(dialog_window& window) {
        const auto fields = checked_fields(window);
        if (fields == 0) return beep();
        const bool everything = !selection_ && window.is_checked(full_backup);
        is_asking_ = true;
        try {
            ask_for_destination(window, [self = ostrevan::service_ptr_t<export_dialog>(this), &window, fields,
                                         everything](const std::optional<std::string>& path) {
                self->is_asking_ = false;
                if (!path) return;
                self->export_to(*path, fields, everything);
                if (!self->is_closed_) window.close();
            });
        } catch (const std::exception& e) {
            report_export_failure(e.what());
            window.close();
        }
    }

    void export_to(const std::string& path, std::uint32_t fields, bool everything) const {
        try {
            exportToFile(path.c_str(), fields, everything ? nullptr : chosen_tracks().get());
        } catch (const std::exception& e) {
            report_export_failure(e.what());
        }
    }

    [[nodiscard]] shared_tracks chosen_tracks() const {
        if (selection_) return selection_;
        ostrevan::metadb_handle_list tracks;
        ostrevan::get_service<ostrevan::library_manager>()->get_all_items(tracks);
        return std::make_shared<const ostrevan::metadb_handle_list>(std::move(tracks));
    }

    shared_tracks selection_;
    bool is_asking_ = false;  ///< for the file; the window waits for the answer
    bool is_closed_ = false;
};

/// Only one dialog is open at a time. One that is open already is brought forward.
void open_unless_another_is(shared_tracks selection) {
    if (!ostrevan::ModalDialog_CanCreateNew()) return ostrevan::ModalDialog_PokeExisting();
    open_dialog(ostrevan::service_new<export_dialog>(std::move(selection)));
}

}  // namespace

void open_export_dialog() { open_unless_another_is({}); }
void open_export_dialog(ostrevan::metadb_handle_list_cref tracks) { open_unless_another_is(share_tracks(tracks)); }

}  // namespace quorvel::pcdb_export
