#pragma once

#include "ostrevan/tag_update.h"
#include "ostrevan/track.h"

namespace quorvel {

/// Starts to write the statistics, as they are now, into the tags of the files, and returns at once. A file whose tags
/// already say the same is not written. Tracks whose statistics cannot be read are left out, and the console says so; if no
/// others remain, no request is made. `updateFlags` are those of the tag-update service, `notify` may be empty. If the
/// request cannot be made, nothing is written, without a message. [main-thread]
void PCDB_stamp_tags(ostrevan::metadb_handle_list_cref tracks, unsigned updateFlags, ostrevan::completion_notify_ptr notify);

/// Starts to remove every statistics tag from the files, and returns at once. A file without any is not written.
/// [main-thread]
void PCDB_clear_tags(ostrevan::metadb_handle_list_cref tracks, void* parent_window);

/// The same as `PCDB_stamp_tags` for writable tracks, if the user wants file tags to follow every change. `user_initiated`
/// is false for a play that was counted. [main-thread]
void PCDB_auto_sync_tags(ostrevan::metadb_handle_list_cref tracks, bool user_initiated);

/// The tracks except those at locations where nothing may be rewritten, in their order. [any-thread]
[[nodiscard]] ostrevan::metadb_handle_list writable_tracks(ostrevan::metadb_handle_list_cref tracks);

}  // namespace quorvel
