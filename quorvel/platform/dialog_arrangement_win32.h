#pragma once

#include <windows.h>

#include "ostrevan/dialog.h"

namespace quorvel {

/// Places the controls one below the other, each as large as its text in the dialog's font needs, with the buttons at the
/// bottom right, and gives the dialog the size that this and its title take. [main-thread]
void arrange_dialog(HWND dialog, const ostrevan::dialog_layout& layout);

/// Moves the dialog to the middle of its owner, or of the screen where the owner is not to be seen, within the part of the
/// screen that the task bar leaves. [main-thread]
void centre_on_owner(HWND dialog) noexcept;

}  // namespace quorvel
