#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <utility>

namespace ostrevan::core {

/// Something that one job at a time may do.
class turn {
public:
    class holder {
    public:
        explicit holder(turn& of) noexcept : turn_(&of) {}
        holder(holder&& other) noexcept : turn_(std::exchange(other.turn_, nullptr)) {}
        holder& operator=(holder&&) = delete;
        holder(const holder&) = delete;
        holder& operator=(const holder&) = delete;
        ~holder() {
            if (turn_ != nullptr) turn_->give_back();
        }

    private:
        turn* turn_;
    };

    /// Waits, on the own thread of the current job, until no other job has the turn; empty when the job is stopped before.
    /// `on_wait` is called when it has to wait.
    std::optional<holder> take(const std::function<void()>& on_wait);

private:
    bool try_take();
    void give_back();

    std::mutex mutex_;
    bool is_taken_ = false;
};

}  // namespace ostrevan::core
