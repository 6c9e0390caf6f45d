#include "player/index/index_writer.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace ostrevan::index {
namespace {

constexpr const char* unsaved_is_kept = " What has not been saved is kept in memory and saved as soon as that is possible.";

}  // namespace

index_writer::index_writer(steps work, std::chrono::milliseconds retry_interval)
    : work_(std::move(work)), retry_interval_(retry_interval), thread_([this](const std::stop_token& stop) { run(stop); }) {}

index_writer::~index_writer() {
    const auto failure = pending() ? wait_for(queued_) : std::nullopt;
    thread_.request_stop();
    thread_.join();
    // After the thread's own reports, so that this is the last.
    if (failure) work_.report("The last changes could not be saved and are lost. " + *failure);
}

void index_writer::enqueue(std::vector<index_job> jobs) {
    const std::scoped_lock lock(mutex_);
    std::ranges::move(jobs, std::back_inserter(queue_));
    ++queued_;
    has_news_ = true;
    wake_.notify_one();
}

void index_writer::flush() {
    std::uint64_t target = 0;
    {
        const std::scoped_lock lock(mutex_);
        target = queued_;
    }
    if (target == loaded_target) return;
    if (const auto failure = wait_for(target)) throw std::runtime_error(*failure + unsaved_is_kept);
}

void index_writer::wait_loaded() {
    if (const auto failure = wait_for(loaded_target)) throw std::runtime_error(*failure);
}

bool index_writer::pending() const {
    const std::scoped_lock lock(mutex_);
    return queued_ != loaded_target && done_ != queued_;
}

/// An attempt already under way does not count: it may have begun before disk space was freed.
std::optional<std::string> index_writer::wait_for(std::uint64_t target) {
    std::unique_lock lock(mutex_);
    if (done_ >= target) return std::nullopt;
    const std::uint64_t attempts_before = attempts_;
    urged_ = true;
    wake_.notify_one();
    done_changed_.wait(lock, [&] { return done_ >= target || failed_attempt_ > attempts_before; });
    return done_ < target ? std::optional(failure_) : std::nullopt;
}

void index_writer::run(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        if (failing_) wake_.wait_for(lock, stop, retry_interval_, [&] { return urged_ || has_news_; });
        else {
            wake_.wait(lock, stop, [&] { return done_ != queued_; });
            wake_.wait_for(lock, stop, gathering, [&] { return urged_; });
        }
        while (!stop.stop_requested() && attempt(lock, stop)) {
        }
    }
}

bool index_writer::attempt(std::unique_lock<std::mutex>& lock, const std::stop_token& stop) {
    if (done_ == queued_) return false;
    urged_ = has_news_ = false;
    const std::uint64_t number = ++attempts_;
    const bool loading = done_ < loaded_target;
    const std::uint64_t target = loading ? loaded_target : queued_;
    if (!loading) std::ranges::move(std::exchange(queue_, {}), std::back_inserter(saving_));

    std::string failure;
    lock.unlock();
    try {
        if (!loading) work_.save(saving_);
        else if (!work_.load(stop)) failure = "stopped";
    } catch (const std::exception& error) {
        failure = error.what();
    }
    if (failure.empty() && !loading) saving_.clear();
    lock.lock();

    const bool reported = std::exchange(failing_, !failure.empty());
    if (!failing_) done_ = target;
    else {
        failed_attempt_ = number;
        failure_ = failure;
    }
    done_changed_.notify_all();
    if (failing_ && !reported && !stop.stop_requested()) {
        lock.unlock();
        work_.report(failure + unsaved_is_kept);
        lock.lock();
    }
    return !failing_ || urged_ || has_news_;
}

}  // namespace ostrevan::index
