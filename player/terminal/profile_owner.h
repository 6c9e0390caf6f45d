#pragma once

#include <optional>

#include "player/app/session.h"
#include "player/mpris/desktop_control.h"
#include "player/terminal/client_commands.h"

namespace ostrevan::terminal {

/// The player of a process that owns its profile: it carries out the commands of other processes and obeys the desktop.
/// [main-thread]
class profile_owner {
public:
    /// The session belongs to the current job. `is_lasting` as in `ownership`.
    profile_owner(const app::session_options& options, core::profile_lock lock, view::front_end& ui, bool is_lasting);

    ownership state;

private:
    const std::optional<remote::socket_place> place_;

public:
    app::session player;

    /// As in `client_commands`.
    void finish(run_context& own) {
        if (clients_) clients_->finish(own);
    }

private:
    const mpris::desktop_control desktop_;
    std::optional<client_commands> clients_;
};

}  // namespace ostrevan::terminal
