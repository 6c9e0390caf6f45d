#pragma once

#include "quorvel/interchange/import_globals.h"

/// The steps after the file has been read: from what it names to keys of the statistics, and the edits of these. Each throws
/// `ostrevan::exception_aborted` when the user stops it, and what the player and the statistics throw. [main-thread]
namespace quorvel {

/// Gathers the tracks of the library and of all playlists; each that had one of the old keys receives its edit.
void apply_old_edits(ParseGlobals& globals);

/// Gathers the tracks of the pending items and applies these in their order.
void apply_pending_items(ParseGlobals& globals);

namespace pcdb_export {

/// Finds the keys of the gathered tracks whose information the player does not hold: see `ReadKeysInFiles`. [main-thread]
void resolveNoInfo(ParseGlobals& globals, const ostrevan::index_client_ptr& older_mapping = nullptr);

}  // namespace pcdb_export
}  // namespace quorvel
