#pragma once

#include <functional>
#include <set>
#include <string>

#include "player/app/session.h"
#include "player/core/job.h"

namespace ostrevan::app {

/// The commands of a user who goes on meanwhile: each is a job with a thread of its own. [main-thread]
class user_work {
public:
    /// The session must outlive it, and be idle when it is destroyed.
    explicit user_work(session& player) : player_(player) {}
    user_work(const user_work&) = delete;
    user_work& operator=(const user_work&) = delete;

    /// Begins work on the job's own thread. `why` is its name in the journal of changes. A failure is reported. The job ends
    /// when everything that it has begun is done and saved; then `on_end` is called on the main thread.
    core::job_ptr begin(std::string why, std::function<void(core::job&)> work, std::function<void()> on_end = {});
    /// The same for work of the main thread, such as a command of a menu.
    core::job_ptr begin_on_main(std::string why, std::function<void()> work);

    [[nodiscard]] bool is_any() const noexcept { return !under_way_.empty(); }
    void stop_all() {
        for (const auto& job : under_way_) job->stop() = true;
    }

private:
    void carry_out(core::job& job, const std::function<void(core::job&)>& work);

    session& player_;
    std::set<core::job_ptr> under_way_;
};

}  // namespace ostrevan::app
