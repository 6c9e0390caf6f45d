#pragma once

#include <cstddef>
#include <string>

#include "player/app/playing.h"
#include "player/terminal/command.h"
#include "player/terminal/latest.h"
#include "player/titleformat/script.h"

namespace ostrevan::terminal {

/// Shows a playback on the terminal of a command: messages, and a line that is drawn anew in its place. It watches on the
/// main thread; the command's own thread shows.
class play_screen final : public app::play_watcher {
public:
    explicit play_screen(run_context& context) : context_(context) {}

    void on_started(const app::now_playing& now, const playback::play_status& status) override;
    void on_progress(const app::now_playing& now, const playback::play_status& status) override;
    void on_counted(const metadb_handle_ptr& track) override;
    void on_not_counted(const metadb_handle_ptr& track, const std::string& reason) override;
    void on_failure(const std::string& text) override;
    void on_ended(bool is_replaced) override;

    // On the own thread.
    [[nodiscard]] bool has_ended() const noexcept { return has_ended_; }
    [[nodiscard]] bool is_replaced() const noexcept { return is_replaced_; }
    /// The number of plays that were counted.
    [[nodiscard]] std::size_t counted() const noexcept { return counted_; }

private:
    [[nodiscard]] std::string text_of(const titleformat::script& script, const metadb_handle_ptr& track) const;
    template <typename Work>
    void show(Work work) {
        context_.job.run_on_own_thread(std::move(work));
    }

    struct progress {
        app::now_playing now;
        playback::play_status status;
    };

    run_context& context_;
    latest<progress> progress_;
    const titleformat::script title_ = titleformat::compile("[%artist% - ]%title%");
    const titleformat::script rating_ = titleformat::compile("[%rating_stars_fixed%]");
    bool has_ended_ = false;
    bool is_replaced_ = false;
    std::size_t counted_ = 0;
};

}  // namespace ostrevan::terminal
