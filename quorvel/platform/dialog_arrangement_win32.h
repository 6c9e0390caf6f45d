#pragma once

#include <windows.h>

#include "ostrevan/dialog.h"

namespace quorvel {

/// Places the controls one below the other, each as large as its text needs in the font of the dialog, with the buttons at
/// the bottom right, and gives the dialog the size that these and its title need. [main-thread]
void arrange_dialog(HWND dialog, const ostrevan::dialog_layout& layout);

/// Centres the dialog on its owner, or on the screen if the owner cannot be seen, without covering the task bar.
/// [main-thread]
void centre_on_owner(HWND dialog) noexcept;

}  // namespace quorvel
