#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "ostrevan/library.h"
#include "ostrevan/tag_update.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/front/front_end.h"
#include "player/front/tag_edit_news.h"
#include "player/index/index_service.h"
#include "player/library/media_library.h"

namespace ostrevan::front {

/// The library for components.
class library_manager_impl : public library_manager {
public:
    explicit library_manager_impl(const library::media_library& library) : library_(library) {}
    [[nodiscard]] bool is_library_enabled() const override { return library_.is_enabled(); }
    void get_all_items(metadb_handle_list& out) const override;

private:
    const library::media_library& library_;
};

/// Passes changes of the library on to the components, and what other programs did to tags as an edit. Records of tracks
/// that leave are kept for their whole time from then on, however long ago the library was last gone through.
class library_events final : public library::library_observer {
public:
    library_events(tag_edit_news& news, const service_registry& services, index_service& index)
        : news_(news), services_(services), index_(index) {}
    void on_library_changed(const library::library_changes& changes) override;

private:
    tag_edit_news& news_;
    const service_registry& services_;
    index_service& index_;
};

/// The file-info reload service: files are read in portions between which the main loop serves others. Components are told
/// of tags that another program has edited.
class info_reloads : public info_reload_service {
public:
    info_reloads(main_loop& loop, front_end& ui, tag_edit_news& news, library::media_library& library,
                 library::track_table& tracks)
        : loop_(loop), ui_(ui), news_(news), library_(library), tracks_(tracks) {}

    void reload_async(metadb_handle_list_cref tracks, unsigned mode, void* parent_window, unsigned options,
                      completion_notify_ptr notify) override;

private:
    struct job;
    void step(const std::shared_ptr<job>& work);
    void finish(const job& done);

    main_loop& loop_;
    front_end& ui_;
    tag_edit_news& news_;
    library::media_library& library_;
    library::track_table& tracks_;
};

/// The player's own handles of these tracks.
std::vector<library::track_ptr> own_tracks(library::track_table& tracks, metadb_handle_list_cref handles);

}  // namespace ostrevan::front
