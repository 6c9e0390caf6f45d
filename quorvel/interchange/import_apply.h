#pragma once

#include <map>
#include <vector>

#include "quorvel/interchange/import_parse.h"
#include "quorvel/store/file_keys.h"

/// The later stages of an import: from what the file names to keys under the active mapping, and the edits of these. All
/// throw `ostrevan::exception_aborted` when the user stops them, and what the player and the statistics throw.
/// [main-thread]
namespace quorvel {

/// Gives every track of the library and the playlists that had one of the old keys its edit.
void apply_old_edits(ParseGlobals& globals, const std::map<nuv::guid, OldKeyEdits>& old_edits);

/// Applies the items to their tracks, in the order of the file.
void apply_path_items(ParseGlobals& globals, const std::vector<PathItem>& items);

namespace pcdb_export {

/// Finds the keys of the gathered tracks whose information the player does not hold: see `ReadKeysInFiles`.
void resolveNoInfo(ParseGlobals& globals, std::vector<GatheredTrack>& gathered,
                   const ostrevan::index_client_ptr& older_mapping = nullptr);

}  // namespace pcdb_export
}  // namespace quorvel
