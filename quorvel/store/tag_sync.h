#pragma once

#include "ostrevan/tag_update.h"
#include "ostrevan/track.h"

namespace quorvel {

/// Writes the statistics that the database holds now into the files' tags. Returns at once; a file whose tags say the same
/// already is not written. Tracks whose statistics cannot be read are left out, which the console says; without any other no
/// request is made. `updateFlags` are those of the tag-update service, `notify` may be empty. When the request
/// cannot be made nothing is written, without a message. [main-thread]
void PCDB_stamp_tags(ostrevan::metadb_handle_list_cref tracks, unsigned updateFlags, ostrevan::completion_notify_ptr notify);

/// Removes every statistics tag from the files. Returns at once; a file without any is not written. [main-thread]
void PCDB_clear_tags(ostrevan::metadb_handle_list_cref tracks, void* parent_window);

/// Writes the statistics of the tracks into their files' tags, if the user wants that done whenever statistics change.
/// `user_initiated` is false for a play that was counted. [main-thread]
void PCDB_auto_sync_tags(ostrevan::metadb_handle_list_cref tracks, bool user_initiated);

/// The tracks without those at locations where nothing may be rewritten, in their order. [any-thread]
[[nodiscard]] ostrevan::metadb_handle_list writable_tracks(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
