#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "player/view/open_dialog.h"

namespace ostrevan::terminal {

/// A dialog as text: separators are headings; controls have their number and mark in front.
std::string dialog_text(const view::open_dialog& dialog);

/// The effect of a typed line.
enum class input_effect { none, changed, ok_pressed, cancel_pressed };

/// Applies a typed line: numbers change their controls or press their buttons; "o" or nothing presses OK, "c" Cancel.
/// Changes nothing if any word is something else, or a disabled or missing control.
input_effect apply_input(view::open_dialog& dialog, std::string_view line);

/// Checks or unchecks the control with a label from the command line. Throws `system::user_error`, with the existing labels,
/// when none or several match or the control is disabled.
void apply_label(view::open_dialog& dialog, std::string_view label, bool checked);

/// "Full backup, Rating": the labels that `apply_label` accepts.
std::string labels_of(const view::open_dialog& dialog);

}  // namespace ostrevan::terminal
