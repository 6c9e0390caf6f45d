#pragma once

#include <QString>
#include <functional>

#include "player/app/session.h"
#include "player/core/latest_work.h"
#include "player/titleformat/script.h"

namespace ostrevan::desktop {

class transport_bar;

/// Connects the playback with the transport bar. [main-thread]
class now_playing_link final : private app::play_watcher {
public:
    now_playing_link(app::session& player, transport_bar& bar);
    ~now_playing_link() override;

    /// Null and an empty title when nothing plays.
    std::function<void(const metadb_handle_ptr& track, const QString& title)> on_track;
    std::function<void(const std::string& text)> on_failed;

private:
    void on_started(const app::now_playing& now, const playback::play_status& status) override;
    void on_progress(const app::now_playing& now, const playback::play_status& status) override;
    void on_counted(const metadb_handle_ptr&) override {}
    void on_not_counted(const metadb_handle_ptr& track, const std::string& reason) override;
    void on_failure(const std::string& text) override { on_failed(text); }
    void on_ended(bool is_replaced) override;
    void show_title(const metadb_handle_ptr& track);

    app::session& player_;
    transport_bar& bar_;
    const titleformat::script title_;
    core::latest_work formatting_;
};

}  // namespace ostrevan::desktop
