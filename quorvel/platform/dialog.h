#pragma once

#include "ostrevan/dialog.h"

namespace quorvel {

/// Opens a dialog owned by the player's main window, without waiting for it, and registers it with the player while it is
/// open. Throws `exception_system_error` or what the player throws. [main-thread]
void open_dialog(ostrevan::dialog_rules_ptr rules);

}  // namespace quorvel
