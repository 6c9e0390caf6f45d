#include "player/core/job_thread.h"

#include <utility>

namespace ostrevan::core {

job_thread::job_thread(job_ptr of) : job_(std::move(of)) {
    job_->leave();
    thread_ = std::thread([this] {
        const job::scope scope(job_);
        job_->take_over();
        job_->serve_until([this] { return is_ending_; });
    });
}

job_thread::~job_thread() {
    job_->run_on_own_thread([this] { is_ending_ = true; });
    thread_.join();
    job_->take_over();
    job_->serve();  // given at the last moment
}

}  // namespace ostrevan::core
