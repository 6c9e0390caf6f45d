#pragma once

#include <chrono>
#include <functional>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "player/bus/value.h"

struct sd_bus;

namespace ostrevan::bus {

/// There is no bus, or it has gone. The text is the system's reason.
class bus_error : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

struct signal {
    std::string sender;  ///< the unique name, such as ":1.42"
    std::vector<value> arguments;
};

/// An interface of an object of a program on the bus.
struct interface_place {
    std::string name;
    std::string path;
    std::string interface;
};

/// A connection to the session bus. Used by one thread; handlers are called inside `wait`.
class connection {
public:
    using signal_handler = std::function<void(const signal&)>;
    /// Null when the call failed.
    using reply_handler = std::function<void(const std::vector<value>* reply)>;

    /// Throws bus_error when there is no session bus.
    connection();

    /// Calls the handler for every signal that fits a match rule of the bus.
    void on_signal(const char* rule, signal_handler handler);
    /// Calls a method whose arguments are texts. The handler is called later, after at most five seconds.
    void call(const interface_place& at, const char* method, std::initializer_list<const char*> words,
              reply_handler handler);

    /// Handles pending messages, waits for another one, for `wake` to become readable, or for the timeout, and handles what
    /// has arrived. Throws bus_error when the bus has gone or a handler throws.
    void wait(int wake, std::chrono::milliseconds time);

    [[nodiscard]] sd_bus& native() noexcept { return *bus_; }

private:
    void handle_all();

    struct close {
        void operator()(sd_bus* bus) const noexcept;
    };
    std::unique_ptr<sd_bus, close> bus_;
};

}  // namespace ostrevan::bus
