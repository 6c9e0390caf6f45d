#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>

#include "player/remote/channel.h"
#include "player/remote/message.h"
#include "player/system/descriptor.h"

namespace ostrevan::remote {

/// The terminal, files or pipes of a client, and its current folder.
struct client_files {
    system::descriptor input, output, error, folder;
};

/// A command of a client, at the owner's end.
class call {
public:
    explicit call(system::descriptor socket) : channel_(std::move(socket)) {}

    // For whoever carries it out.

    [[nodiscard]] const command& wanted() const noexcept { return wanted_; }
    [[nodiscard]] client_files take_files() noexcept { return std::move(files_); }
    /// `work` runs at each Ctrl-C of the client and at its death, on any thread; at once if that has happened before.
    /// It must not use the call.
    void on_interrupt(std::function<void()> work);
    [[nodiscard]] bool is_in_foreground() const noexcept { return is_in_foreground_; }
    /// The last word to the client. [any-thread]
    void finish(int status) { end_with(done{status}); }
    void refuse(refusal why) { end_with(std::move(why)); }

    // For the listener's thread.

    [[nodiscard]] int socket() const noexcept { return channel_.socket(); }
    enum class state { incomplete, complete, ended };
    /// Reads what the client has sent, without waiting. A client that breaks the rules is told so and has ended.
    state receive();

private:
    bool receive_all();
    void take(message what);
    void interrupt_it();
    void end_with(const message& last);

    channel channel_;
    command wanted_;
    client_files files_;
    bool is_complete_ = false;
    std::atomic<bool> is_in_foreground_{true};
    std::mutex mutex_;
    bool is_interrupted_ = false;
    bool is_over_ = false;
    std::function<void()> on_interrupt_;
};

}  // namespace ostrevan::remote
