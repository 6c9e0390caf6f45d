#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "player/view/open_dialog.h"

namespace ostrevan::terminal {

/// A dialog as lines of text: separators are headings, what can be changed or pressed has a number before it and its mark.
std::string dialog_text(const view::open_dialog& dialog);

/// What a line that the user typed has done.
enum class input_effect { none, changed, ok_pressed, cancel_pressed };

/// Does what the user typed: numbers change their controls or press their buttons; "o" or nothing presses OK, "c" Cancel.
/// Nothing is done when it is none of these, or names what is disabled or not there.
input_effect apply_input(view::open_dialog& dialog, std::string_view line);

/// Checks or unchecks the control that a label of the command line stands for. Throws `usage_error` with the labels there
/// are when none fits, several do, or the one is disabled.
void apply_label(view::open_dialog& dialog, std::string_view label, bool checked);

/// "Full backup, Rating": the labels of the marks that `apply_label` can set.
std::string labels_of(const view::open_dialog& dialog);

}  // namespace ostrevan::terminal
