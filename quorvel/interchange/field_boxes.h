#pragma once

#include <array>
#include <cstdint>

#include "ostrevan/dialog.h"
#include "quorvel/interchange/export_fields.h"

/// What the export and the import dialog have in common.
namespace quorvel {

inline constexpr const char* dialog_font = "MS Shell Dlg";
inline constexpr unsigned dialog_font_points = 8;
inline constexpr int fields_separator = 1002;

struct field_box {
    int id;
    ExportFields field;
    const char* text;
};
inline constexpr std::array field_boxes{
    field_box{1005, export_play_count, "Times played"},
    field_box{1006, export_first_played, "First played time"},
    field_box{1007, export_last_played, "Last played time"},
    field_box{1008, export_added, "Added time"},
    field_box{1009, export_rating, "Rating"},
};

/// How both dialogs end: a heading, a box for each field, and the two buttons.
using field_controls = std::array<ostrevan::dialog_control, field_boxes.size() + 3>;
constexpr field_controls controls_for_fields(const char* heading) noexcept {
    using ostrevan::dialog_control_kind;
    field_controls controls{};
    auto* next = controls.data();
    *next++ = {fields_separator, dialog_control_kind::separator, heading};
    for (const auto& box : field_boxes) *next++ = {box.id, dialog_control_kind::check_box, box.text};
    *next++ = {ostrevan::dialog_ok, dialog_control_kind::button, "OK"};
    *next++ = {ostrevan::dialog_cancel, dialog_control_kind::button, "Cancel"};
    return controls;
}

inline void check_all_fields(ostrevan::dialog_window& window) {
    for (const auto& box : field_boxes) window.set_checked(box.id, true);
}

/// A set of `ExportFields`.
[[nodiscard]] inline std::uint32_t checked_fields(const ostrevan::dialog_window& window) {
    std::uint32_t fields = 0;
    for (const auto& box : field_boxes)
        if (window.is_checked(box.id)) fields |= box.field;
    return fields;
}

}  // namespace quorvel
