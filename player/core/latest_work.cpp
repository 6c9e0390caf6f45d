#include "player/core/latest_work.h"

#include <exception>
#include <utility>

namespace ostrevan::core {

void latest_work::ask(work wanted) {
    state_->next = std::move(wanted);
    if (state_->stale) *state_->stale = true;
    else begin(state_);
}

void latest_work::forget() {
    state_->next = nullptr;
    if (state_->stale) *state_->stale = true;
}

void latest_work::begin(const std::shared_ptr<state>& of) {
    of->stale = std::make_shared<std::atomic<bool>>(false);
    of->loop.start_thread([of, stale = of->stale, work = std::exchange(of->next, nullptr)] {
        outcome done;
        std::exception_ptr failure;
        try {
            done = work(*stale);
        } catch (...) {
            failure = std::current_exception();
        }
        of->loop.post([of, stale, done = std::move(done), failure] {
            of->stale.reset();
            if (of->next) begin(of);
            if (*stale) return;
            if (failure) std::rethrow_exception(failure);
            if (done) done();
        });
    });
}

}  // namespace ostrevan::core
