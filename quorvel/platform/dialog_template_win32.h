#pragma once

#include <windows.h>

#include <vector>

#include "ostrevan/dialog.h"

namespace quorvel {

/// The table as the block of memory from which the system makes a dialog (DLGTEMPLATEEX): a hidden window with the title and
/// the font, and the controls in the table's order, which is the order of the tab key. Nothing has a size yet: that is known
/// when the texts have been measured in the dialog's font.
[[nodiscard]] std::vector<WORD> dialog_template(const ostrevan::dialog_layout& layout);

}  // namespace quorvel
