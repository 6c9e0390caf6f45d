#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "ostrevan/tag_update.h"
#include "player/core/main_loop.h"
#include "player/library/media_library.h"
#include "player/services/tag_edit_news.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// The file-info reload service: reads files on a thread of its own, and reports edits by other programs to the components.
class info_reload_service_impl : public info_reload_service {
public:
    info_reload_service_impl(core::main_loop& loop, view::front_end& ui, tag_edit_news& news,
                             library::media_library& library, library::track_table& tracks)
        : loop_(loop), ui_(ui), news_(news), library_(library), tracks_(tracks) {}

    void reload_async(metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                      completion_notify_ptr notify) override;

private:
    struct outcome {
        std::size_t total = 0;
        std::size_t done = 0;
        std::vector<library::file_problem> problems{};
    };
    outcome reload(std::span<const library::track_ptr> tracks, library::refresh_mode mode);
    void finish(const outcome& result, const completion_notify_ptr& notify);

    core::main_loop& loop_;
    view::front_end& ui_;
    tag_edit_news& news_;
    library::media_library& library_;
    library::track_table& tracks_;
};

}  // namespace ostrevan::services
