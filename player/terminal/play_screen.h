#pragma once

#include <cstddef>
#include <string>

#include "player/app/playing.h"
#include "player/terminal/command.h"
#include "player/titleformat/script.h"

namespace ostrevan::terminal {

/// Shows a playback on the terminal: messages, and a line that is drawn anew in its place.
class play_screen final : public app::play_watcher {
public:
    play_screen(run_context& context, std::size_t tracks) : context_(context), tracks_(tracks) {}

    void on_started(const app::now_playing& now) override;
    void on_progress(const app::now_playing& now, const playback::play_status& status) override;
    void on_counted(const metadb_handle_ptr& track) override;
    void on_not_counted(const metadb_handle_ptr& track, const std::string& reason) override;
    void on_failure(const std::string& text) override;

private:
    [[nodiscard]] std::string text_of(const titleformat::script& script, const metadb_handle_ptr& track) const;

    run_context& context_;
    const std::size_t tracks_;
    const titleformat::script title_ = titleformat::compile("[%artist% - ]%title%");
    const titleformat::script rating_ = titleformat::compile("[%rating_stars_fixed%]");
};

}  // namespace ostrevan::terminal
