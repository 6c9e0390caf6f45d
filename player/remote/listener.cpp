#include "player/remote/listener.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

namespace ostrevan::remote {
namespace {

/// Each has five descriptors; a process may have 1024 by default.
constexpr std::size_t most_clients = 64;
constexpr auto out_of_descriptors = std::chrono::milliseconds(50);

}  // namespace

listener::listener(const socket_place& place, taker take, std::chrono::milliseconds patience)
    : place_(place), take_(std::move(take)), patience_(patience), socket_(place_.listen()), thread_([this] { serve(); }) {}

listener::~listener() {
    place_.remove();
    is_ending_ = true;
    stop_taking();
    thread_.join();
}

void listener::stop_taking() {
    takes_ = false;
    wake_.set();
}

void listener::serve() {
    while (!is_ending_) {
        wait();
        if (polled_[0].revents != 0) wake_.clear();
        if (polled_[1].revents != 0) accept_one();
        std::size_t each = 2;
        std::erase_if(clients_, [&](connection& client) {
            const bool has_news = each < polled_.size() && polled_[each++].revents != 0;
            return !attend(client, has_news);
        });
    }
    turn_away_the_rest();
}

/// So that they look for the next owner, and do not take this for a crash.
void listener::turn_away_the_rest() {
    while (accept_one()) continue;
    for (auto& client : clients_) attend(client, false);
}

void listener::wait() {
    const bool has_room = clients_.size() < most_clients;
    polled_ = {{wake_.file(), POLLIN, 0}, {has_room ? socket_.get() : -1, POLLIN, 0}};
    auto next = clock::time_point::max();
    for (const auto& client : clients_) {
        polled_.push_back({client.of->socket(), POLLIN, 0});
        if (!client.is_taken) next = std::min(next, client.latest);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - clock::now()).count();
    const bool waits_for_client = next != clock::time_point::max();
    if (::poll(polled_.data(), polled_.size(), waits_for_client ? static_cast<int>(std::max<long long>(left, 0)) : -1) < 0)
        for (auto& each : polled_) each.revents = 0;
}

bool listener::accept_one() {
    system::descriptor socket(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!socket) {
        if (errno != EAGAIN && !is_ending_) std::this_thread::sleep_for(out_of_descriptors);
        return false;
    }
    if (is_of_this_user(socket)) clients_.push_back({std::make_shared<call>(std::move(socket)), clock::now() + patience_});
    return true;
}

bool listener::attend(connection& client, bool has_news) {
    const auto state = has_news ? client.of->receive() : call::state::incomplete;
    if (state == call::state::ended) return false;
    if (client.is_taken) return true;
    if (!takes_) {
        client.of->refuse({.is_ending = true, .reason = "it is ending"});
        return false;
    }
    if (state == call::state::complete) {
        client.is_taken = true;
        try {
            take_(client.of);
        } catch (const std::exception& error) {
            client.of->refuse({.reason = error.what()});
        }
        return true;
    }
    if (clock::now() < client.latest) return true;
    client.of->refuse({.reason = "the command did not come in time"});
    return false;
}

}  // namespace ostrevan::remote
