#pragma once

#include <memory>
#include <mutex>
#include <set>

#include "player/app/session.h"
#include "player/core/job.h"
#include "player/remote/listener.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Carries out the commands of other processes in the session of this one, each on a thread of its own.
class client_commands {
public:
    /// The session's loop runs until all are done.
    client_commands(app::session& player, ownership& owner, const remote::socket_place& place);
    client_commands(const client_commands&) = delete;
    client_commands& operator=(const client_commands&) = delete;

    /// Returns when those under way are done, for this process's command, which is done, on its own thread. When that takes
    /// long it says so, and takes others meanwhile; Ctrl-C then interrupts them all.
    void finish(run_context& own);

private:
    void begin(const std::shared_ptr<remote::call>& of);
    void carry_out(remote::call& of, const core::job_ptr& job);
    /// Returns false and takes no more when none is under way.
    bool are_under_way();
    void take_more(bool takes);
    void interrupt_all();

    app::session& player_;
    ownership& owner_;
    std::mutex mutex_;
    bool takes_ = true;
    std::set<core::job_ptr> under_way_;
    remote::listener listener_;
};

}  // namespace ostrevan::terminal
