#pragma once

#include <mutex>
#include <span>
#include <vector>

#include "ostrevan/tag_edit.h"
#include "player/index/index_store.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

/// An edit of tags that merges the record of a track into another one, which its new tags have already.
struct retag {
    metadb_handle_ptr track;
    nuv::guid index;
    index::record_change merge;  ///< of the record of the new tags
    metadb_handle_ptr other{};   ///< another one of the edited tracks that gets the same tags, if any
};

/// Finds such merges before they happen, by the rules of the components; the edits count in their order. [any-thread]
std::vector<retag> merges_of(std::span<const tag_edit> edits, const index::index_store& records,
                             const services::index_manager_impl& index);

/// Keeps the merges that other programs caused until the user is told. [any-thread]
class retag_log {
public:
    void add(std::vector<retag> found);
    /// Returns and forgets them.
    std::vector<retag> take();
    void forget(metadb_handle_list_cref tracks);

private:
    std::mutex mutex_;
    std::vector<retag> found_;
};

}  // namespace ostrevan::app
