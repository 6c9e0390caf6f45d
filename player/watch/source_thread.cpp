#include "player/watch/source_thread.h"

#include <poll.h>

#include <exception>
#include <utility>

namespace ostrevan::watch {
namespace {

constexpr int pause_ms = 3000;

}  // namespace

source_thread::source_thread(std::string name, observation_queue& out, std::function<void(system::wake_event& stop)> listen)
    : name_(std::move(name)), out_(out), listen_(std::move(listen)), thread_([this] { run(); }) {}

source_thread::~source_thread() {
    stop_.set();
    thread_.join();
}

void source_thread::run() {
    while (!stop_.is_set()) {
        try {
            listen_(stop_);
        } catch (const std::exception& error) {
            out_.push(name_, has_trouble{error.what()});
            pollfd stop{stop_.file(), POLLIN, 0};
            poll(&stop, 1, pause_ms);
        }
    }
}

}  // namespace ostrevan::watch
