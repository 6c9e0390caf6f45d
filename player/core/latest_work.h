#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "player/core/main_loop.h"

namespace ostrevan::core {

/// Does the latest work asked for on another thread, one at a time; what was asked for in between is left out.
/// [main-thread]
class latest_work {
public:
    /// Runs on the main thread. It is left out, too, when something newer was asked for meanwhile.
    using outcome = std::function<void()>;
    /// `is_stale` becomes true when nobody waits for the outcome any more.
    using work = std::function<outcome(const std::atomic<bool>& is_stale)>;

    explicit latest_work(main_loop& loop) : state_(std::make_shared<state>(loop)) {}
    ~latest_work() { forget(); }
    latest_work(const latest_work&) = delete;
    latest_work& operator=(const latest_work&) = delete;

    void ask(work wanted);
    void forget();
    [[nodiscard]] bool is_busy() const noexcept { return state_->stale != nullptr; }

private:
    struct state {
        explicit state(main_loop& in) noexcept : loop(in) {}
        main_loop& loop;
        std::shared_ptr<std::atomic<bool>> stale;  // of the work under way; null when there is none
        work next;
    };
    static void begin(const std::shared_ptr<state>& of);

    const std::shared_ptr<state> state_;
};

}  // namespace ostrevan::core
