#pragma once

#include "ostrevan/track.h"

namespace quorvel::pcdb_export {

/// Opens the export dialog for the whole database, or for a copy of a selection, and returns at once; brings an open one
/// forward instead. Throws when it cannot be opened. [main-thread]
void open_export_dialog();
void open_export_dialog(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel::pcdb_export
