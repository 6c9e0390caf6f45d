#include "quorvel/store/tag_sync.h"

#include "quorvel/common/settings.h"

namespace quorvel {

void PCDB_auto_sync_tags(ostrevan::metadb_handle_list_cref /*tracks*/, bool /*user_initiated*/) {
    if (!tag_sync_enabled.get()) return;
}

}  // namespace quorvel
