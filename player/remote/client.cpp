#include "player/remote/client.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <utility>

#include "player/remote/channel.h"
#include "player/remote/client_terminal.h"
#include "player/system/interrupt.h"
#include "player/system/raw_terminal.h"

namespace ostrevan::remote {
namespace {

/// Of whatever terminal the streams are.
bool is_job_in_foreground() {
    return system::is_in_foreground(STDIN_FILENO) && system::is_in_foreground(STDOUT_FILENO) &&
           system::is_in_foreground(STDERR_FILENO);
}

/// Tells the owner what happens here, and waits for its last word.
class conversation {
public:
    explicit conversation(system::descriptor socket) : channel_(std::move(socket)) {}
    std::optional<int> run(command wanted);

private:
    void wait();
    void tell_of_signals();
    void tell_of_foreground(bool now);
    void stop();

    channel channel_;
    client_terminal terminal_;
    bool has_told_interrupt_ = false;
    bool is_in_foreground_ = true;
};

void conversation::wait() {
    constexpr int look_again_ms = 100;  // a shell moves a job to the foreground without a sign
    pollfd owner{channel_.socket(), POLLIN, 0};
    ::poll(&owner, 1, look_again_ms);
}

void conversation::tell_of_signals() {
    if (!system::interrupted() || std::exchange(has_told_interrupt_, true)) return;
    channel_.send(interrupt{});
}

void conversation::tell_of_foreground(bool now) {
    if (std::exchange(is_in_foreground_, now) == now) return;
    if (now) terminal_.take_back();
    channel_.send(foreground{now});
}

void conversation::stop() {
    tell_of_foreground(false);
    terminal_.stop();
}

std::optional<int> conversation::run(command wanted) {
    const system::descriptor folder(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder) throw std::runtime_error("The current folder cannot be opened");
    wanted.is_in_foreground = is_in_foreground_ = is_job_in_foreground();
    const std::array streams{STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO, folder.get()};
    channel_.send(wanted, streams);  // whoever refuses may have closed; its reason can still be read
    for (bool is_open = true; is_open;) {
        wait();
        is_open = channel_.receive();
        while (const auto answer = channel_.next()) {
            if (const auto* const end = std::get_if<done>(&*answer)) return end->status;
            const auto& refused = std::get<refusal>(*answer);
            if (refused.is_ending) return std::nullopt;
            if (refused.version != own_version)
                throw std::runtime_error("The profile is in use by version " + refused.version +
                                         " of this program; this is " + std::string(own_version) +
                                         ". End it there, or choose another profile with --profile.");
            throw std::runtime_error("The process that uses the profile refused the command: " + refused.reason + ".");
        }
        tell_of_signals();
        if (client_terminal::is_to_stop()) stop();
        tell_of_foreground(is_job_in_foreground());
    }
    throw std::runtime_error("The process that carried out this command has ended before it was done.");
}

}  // namespace

std::optional<int> run_at_owner(system::descriptor owner, command wanted) {
    return conversation(std::move(owner)).run(std::move(wanted));
}

}  // namespace ostrevan::remote
