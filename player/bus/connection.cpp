#include "player/bus/connection.h"

#include <poll.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <exception>
#include <utility>

namespace ostrevan::bus {
namespace {

constexpr std::uint64_t patience_us = 5'000'000;

/// The library's functions return negative error numbers.
int checked(int result) {
    if (result < 0) throw bus_error(std::strerror(-result));
    return result;
}

/// Gives a handler to the slot, which lives as long as the connection, or until its reply has come.
template <class Handler>
void keep(sd_bus_slot* slot, std::unique_ptr<Handler>& handler) {
    sd_bus_slot_set_destroy_callback(slot,
                                     [](void* kept) { std::unique_ptr<Handler>(static_cast<Handler*>(kept)).reset(); });
    static_cast<void>(handler.release());  // the slot owns it
    sd_bus_slot_set_floating(slot, 1);
    sd_bus_slot_unref(slot);
}

/// Exceptions must not pass through the library, which is C.
template <class Work>
int guarded(Work work) noexcept {
    try {
        work();
        return 0;
    } catch (const std::exception&) {
        return -EIO;
    }
}

int on_signal_message(sd_bus_message* message, void* handler, sd_bus_error*) {
    return guarded([&] {
        const char* const sender = sd_bus_message_get_sender(message);
        const signal received{sender == nullptr ? "" : sender, read_values(*message)};
        (*static_cast<connection::signal_handler*>(handler))(received);
    });
}

int on_reply_message(sd_bus_message* message, void* handler, sd_bus_error*) {
    return guarded([&] {
        const auto values = read_values(*message);
        const bool has_failed = sd_bus_message_is_method_error(message, nullptr) != 0;
        (*static_cast<connection::reply_handler*>(handler))(has_failed ? nullptr : &values);
    });
}

}  // namespace

void connection::close::operator()(sd_bus* bus) const noexcept { sd_bus_close_unref(bus); }

connection::connection() {
    sd_bus* bus = nullptr;
    const int result = sd_bus_open_user(&bus);
    if (result == -ENOMEDIUM) throw bus_error("there is no session bus");
    checked(result);
    bus_.reset(bus);
}

void connection::on_signal(const char* rule, signal_handler handler) {
    auto kept = std::make_unique<signal_handler>(std::move(handler));
    sd_bus_slot* slot = nullptr;
    checked(sd_bus_add_match(bus_.get(), &slot, rule, on_signal_message, kept.get()));
    keep(slot, kept);
}

void connection::call(const interface_place& at, const char* method, std::initializer_list<const char*> words,
                      reply_handler handler) {
    sd_bus_message* made = nullptr;
    checked(
        sd_bus_message_new_method_call(bus_.get(), &made, at.name.c_str(), at.path.c_str(), at.interface.c_str(), method));
    const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> message(made, sd_bus_message_unref);
    for (const char* const word : words) checked(sd_bus_message_append(made, "s", word));
    auto kept = std::make_unique<reply_handler>(std::move(handler));
    sd_bus_slot* slot = nullptr;
    checked(sd_bus_call_async(bus_.get(), &slot, made, on_reply_message, kept.get(), patience_us));
    keep(slot, kept);
}

void connection::handle_all() {
    while (checked(sd_bus_process(bus_.get(), nullptr)) > 0) {
    }
}

void connection::wait(int wake, std::chrono::milliseconds time) {
    handle_all();
    std::uint64_t until_us = 0;  // of the monotonic clock
    checked(sd_bus_get_timeout(bus_.get(), &until_us));
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto now_us = static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count());
    const auto left_ms = until_us > now_us ? (until_us - now_us) / 1000 + 1 : 0;
    const auto time_ms = std::min(static_cast<std::uint64_t>(time.count()), left_ms);
    const auto events = static_cast<short>(checked(sd_bus_get_events(bus_.get())));
    std::array<pollfd, 2> files{pollfd{sd_bus_get_fd(bus_.get()), events, 0}, pollfd{wake, POLLIN, 0}};
    if (poll(files.data(), files.size(), static_cast<int>(time_ms)) < 0 && errno != EINTR)
        throw bus_error(std::strerror(errno));
    handle_all();
}

}  // namespace ostrevan::bus
