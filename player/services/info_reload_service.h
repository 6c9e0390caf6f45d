#pragma once

#include <memory>

#include "ostrevan/tag_update.h"
#include "player/core/main_loop.h"
#include "player/library/media_library.h"
#include "player/services/tag_edit_news.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// The file-info reload service: reads files in portions, between which the main loop serves others, and reports edits by
/// other programs to the components.
class info_reload_service_impl : public info_reload_service {
public:
    info_reload_service_impl(core::main_loop& loop, view::front_end& ui, tag_edit_news& news,
                             library::media_library& library, library::track_table& tracks)
        : loop_(loop), ui_(ui), news_(news), library_(library), tracks_(tracks) {}

    void reload_async(metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                      completion_notify_ptr notify) override;

private:
    struct job;
    void step(const std::shared_ptr<job>& work);
    void finish(const job& done);

    core::main_loop& loop_;
    view::front_end& ui_;
    tag_edit_news& news_;
    library::media_library& library_;
    library::track_table& tracks_;
};

}  // namespace ostrevan::services
