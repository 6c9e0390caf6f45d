#pragma once

#include <functional>
#include <thread>

#include "player/core/job.h"

namespace ostrevan::core {

/// A job's thread. It runs the tasks given to the job, one after another, until it is destroyed.
class job_thread {
public:
    explicit job_thread(job_ptr of);
    /// Returns when every task is done. The job's own thread is then the calling one.
    ~job_thread();
    job_thread(const job_thread&) = delete;
    job_thread& operator=(const job_thread&) = delete;

private:
    const job_ptr job_;
    bool is_ending_ = false;  // used on the thread only
    std::thread thread_;
};

}  // namespace ostrevan::core
