#pragma once

#include <windows.h>

#include <vector>

#include "ostrevan/dialog.h"

namespace quorvel {

/// The table as the block of memory from which the system makes a dialog (DLGTEMPLATEEX): a hidden window with title and
/// font, and the controls in the order of the table, which is that of the tab key. Sizes follow later, when the texts have
/// been measured in the font of the dialog.
[[nodiscard]] std::vector<WORD> dialog_template(const ostrevan::dialog_layout& layout);

}  // namespace quorvel
