#pragma once

#include <QTimer>
#include <optional>
#include <string>

#include "player/core/job_thread.h"
#include "player/desktop/loop_bridge.h"
#include "player/desktop/main_window.h"
#include "player/desktop/window_front_end.h"
#include "player/terminal/profile_owner.h"

namespace ostrevan::desktop {

struct window_options {
    std::string profile;
    std::string components;
    std::string more_components{};
    playback::audio_output audio = playback::audio_output::automatic;
};

/// The window with its player, which owns the profile and carries out the commands of other processes as well.
/// [main-thread]
class application {
public:
    /// Shows the window first, and then starts the player. Throws with a message for the user.
    application(const window_options& options, core::profile_lock lock);
    /// Finishes what is under way.
    ~application();
    application(const application&) = delete;
    application& operator=(const application&) = delete;

    [[nodiscard]] main_window& window() noexcept { return window_; }
    [[nodiscard]] app::session& player() noexcept { return owner_.player; }

private:
    main_window window_;
    window_front_end ui_{window_};
    const core::job_ptr job_ = std::make_shared<core::job>();
    terminal::terminal screen_;
    const core::job_thread thread_{job_};
    terminal::profile_owner owner_;
    std::optional<loop_bridge> bridge_;
    QTimer looks_for_end_;
};

}  // namespace ostrevan::desktop
