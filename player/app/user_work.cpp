#include "player/app/user_work.h"

#include <exception>
#include <thread>
#include <utility>

#include "player/core/cause.h"

namespace ostrevan::app {

core::job_ptr user_work::begin(std::string why, std::function<void(core::job&)> work, std::function<void()> on_end) {
    auto job = std::make_shared<core::job>();
    job->leave();
    under_way_.insert(job);
    const core::job::scope nobody(nullptr);
    std::thread([this, job, why = std::move(why), work = std::move(work), on_end = std::move(on_end),
                 busy = core::main_loop::activity(player_.loop)] {
        const core::job::scope scope(job);
        const core::cause_scope cause(why);
        job->take_over();
        carry_out(*job, work);
        player_.loop.call([&] {
            under_way_.erase(job);
            if (on_end) on_end();
        });
        job->wait_until_idle();
        job->leave();
    }).detach();
    return job;
}

core::job_ptr user_work::begin_on_main(std::string why, std::function<void()> work) {
    const auto held = std::make_shared<std::function<void()>>(std::move(work));
    return begin(std::move(why), [this, held](core::job&) {
        player_.loop.call([&] {
            const auto once = std::exchange(*held, nullptr);  // and is destroyed on the main thread
            once();
        });
    });
}

void user_work::carry_out(core::job& job, const std::function<void(core::job&)>& work) {
    const auto reporting = [&](const std::function<void()>& step) {
        try {
            step();
        } catch (...) {
            player_.loop.post([failure = std::current_exception()] { std::rethrow_exception(failure); });
        }
    };
    reporting([&] { work(job); });
    job.wait_until_idle();
    reporting([&] { player_.save(); });
    job.wait_until_idle();
}

}  // namespace ostrevan::app
