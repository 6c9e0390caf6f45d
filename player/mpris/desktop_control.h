#pragma once

#include <memory>

#include "player/app/session.h"
#include "player/mpris/bus_side.h"

namespace ostrevan::mpris {

/// Lets the desktop see and control what plays: media keys, and every program that speaks MPRIS. [main-thread]
class desktop_control final : public app::play_watcher {
public:
    /// The session must outlive it.
    explicit desktop_control(app::session& player) : player_(player) { player.playing.add(*this); }
    ~desktop_control() override { player_.playing.remove(*this); }

    void on_started(const app::now_playing&, const playback::play_status&) override {}
    void on_progress(const app::now_playing& now, const playback::play_status& status) override;
    void on_counted(const metadb_handle_ptr&) override {}
    void on_not_counted(const metadb_handle_ptr&, const std::string&) override {}
    void on_failure(const std::string&) override {}
    void on_ended(bool is_replaced) override;

private:
    app::session& player_;
    std::unique_ptr<bus_side> side_;  // while something plays
};

}  // namespace ostrevan::mpris
