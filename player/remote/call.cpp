#include "player/remote/call.h"

#include <utility>

namespace ostrevan::remote {

void call::on_interrupt(std::function<void()> work) {
    const std::lock_guard lock(mutex_);
    on_interrupt_ = std::move(work);
    if (is_interrupted_ && on_interrupt_) on_interrupt_();
}

void call::interrupt_it() {
    const std::lock_guard lock(mutex_);
    if (is_over_) return;
    is_interrupted_ = true;
    if (on_interrupt_) on_interrupt_();
}

void call::end_with(const message& last) {
    const std::lock_guard lock(mutex_);
    if (std::exchange(is_over_, true)) return;
    on_interrupt_ = nullptr;
    channel_.send(last);  // never waits: nothing was sent before
    ::shutdown(channel_.socket(), SHUT_RDWR);
}

call::state call::receive() {
    try {
        if (!receive_all()) {
            interrupt_it();
            return state::ended;
        }
    } catch (const malformed& wrong) {
        interrupt_it();
        refuse({.reason = wrong.what()});
        return state::ended;
    }
    return is_complete_ ? state::complete : state::incomplete;
}

bool call::receive_all() {
    const bool is_open = channel_.receive();
    while (auto what = channel_.next()) take(std::move(*what));
    return is_open;
}

void call::take(message what) {
    auto descriptors = channel_.take_descriptors();
    if (auto* const wanted = std::get_if<command>(&what); wanted != nullptr && !is_complete_) {
        if (descriptors.size() != descriptors_of_command) throw malformed("descriptors are missing");
        wanted_ = std::move(*wanted);
        is_in_foreground_ = wanted_.is_in_foreground;
        files_ = {std::move(descriptors[0]), std::move(descriptors[1]), std::move(descriptors[2]),
                  std::move(descriptors[3])};
        is_complete_ = true;
        return;
    }
    const bool is_in_place = is_complete_ && descriptors.empty();
    if (is_in_place && std::holds_alternative<interrupt>(what)) interrupt_it();
    else if (const auto* const place = std::get_if<foreground>(&what); is_in_place && place != nullptr)
        is_in_foreground_ = place->is_in_foreground;
    else throw malformed("a frame is out of place");
}

}  // namespace ostrevan::remote
