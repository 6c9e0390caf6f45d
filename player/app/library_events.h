#pragma once

#include <functional>
#include <string>
#include <utility>

#include "ostrevan/library.h"
#include "player/app/changes.h"
#include "player/app/known_tracks.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/library/library_changes.h"
#include "player/services/index_manager.h"
#include "player/services/tag_edit_news.h"

namespace ostrevan::app {

/// Passes changes of the library on to the components, and edits of tags by other programs too. The retention period of the
/// records of removed tracks starts anew, and what they are called is noted. Components are called on the main thread,
/// whatever the thread of the change.
class library_events final : public library::library_observer {
public:
    library_events(core::main_loop& loop, services::tag_edit_news& news, const core::service_registry& services,
                   services::index_manager_impl& index, known_tracks& known, changes& told,
                   std::function<void(const std::string&)> report)
        : loop_(loop),
          news_(news),
          services_(services),
          index_(index),
          known_(known),
          changes_(told),
          report_(std::move(report)) {}
    void on_library_changed(const library::library_changes& changes) override;
    void on_failure(const std::string& message) override { report_(message); }

private:
    /// Tells each component that these tracks have changed.
    void tell(metadb_handle_list_cref tracks, void (library_callback::*event)(metadb_handle_list_cref));

    core::main_loop& loop_;
    services::tag_edit_news& news_;
    const core::service_registry& services_;
    services::index_manager_impl& index_;
    known_tracks& known_;
    changes& changes_;
    const std::function<void(const std::string&)> report_;
};

}  // namespace ostrevan::app
