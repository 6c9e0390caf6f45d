#pragma once

#include "ostrevan/track.h"

namespace quorvel {

/// Opens the export dialog for a copy of the selection, without waiting for it. Throws when it cannot be opened.
/// [main-thread]
void open_export_dialog(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
