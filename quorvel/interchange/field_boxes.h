#pragma once

#include <array>
#include <cstdint>

#include "ostrevan/dialog.h"
#include "quorvel/store/record_fields.h"

/// What the export and the import dialog have in common.
namespace quorvel {

inline constexpr const char* dialog_font = "MS Shell Dlg";
inline constexpr unsigned dialog_font_points = 8;
inline constexpr int fields_separator = 1002;

/// The identifier of the box of the field at this position in `record_fields`.
[[nodiscard]] constexpr int field_box(std::size_t position) noexcept { return 1005 + static_cast<int>(position); }

/// How both dialogs end: a heading, a box for each field, and the two buttons.
using field_controls = std::array<ostrevan::dialog_control, record_fields.size() + 3>;
constexpr field_controls controls_for_fields(const char* heading) noexcept {
    using ostrevan::dialog_control_kind;
    field_controls controls{};
    auto* next = controls.data();
    *next++ = {fields_separator, dialog_control_kind::separator, heading};
    for (std::size_t i = 0; i < record_fields.size(); ++i)
        *next++ = {field_box(i), dialog_control_kind::check_box, record_fields[i].label};
    *next++ = {ostrevan::dialog_ok, dialog_control_kind::button, "OK"};
    *next++ = {ostrevan::dialog_cancel, dialog_control_kind::button, "Cancel"};
    return controls;
}

inline void check_all_fields(ostrevan::dialog_window& window) {
    for (std::size_t i = 0; i < record_fields.size(); ++i) window.set_checked(field_box(i), true);
}

/// A set of `ExportFields`.
[[nodiscard]] inline std::uint32_t checked_fields(const ostrevan::dialog_window& window) {
    std::uint32_t fields = 0;
    for (std::size_t i = 0; i < record_fields.size(); ++i)
        if (window.is_checked(field_box(i))) fields |= record_fields[i].bit;
    return fields;
}

}  // namespace quorvel
