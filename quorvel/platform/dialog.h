#pragma once

#include "ostrevan/dialog.h"

namespace quorvel {

/// Opens a dialog without waiting for it: the player draws it where it can, otherwise the system does, in a window owned by
/// the player's main window that is registered with the player while it is open. Throws `exception_system_error` or what the
/// player or the rules throw. [main-thread]
void open_dialog(ostrevan::dialog_rules_ptr rules);

}  // namespace quorvel
