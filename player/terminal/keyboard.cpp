#include "player/terminal/keyboard.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

#include "player/titleformat/unicode.h"

namespace ostrevan::terminal {
namespace {

/// Length of an escape sequence: ESC, [ or O, parameters, and a final letter. 1 for the key Esc alone.
std::size_t sequence_length(std::string_view text) {
    if (text.size() < 3 || (text[1] != '[' && text[1] != 'O')) return 1;
    std::size_t end = 2;
    while (end < text.size() && (text[end] < '@' || text[end] > '~')) ++end;
    return std::min(end + 1, text.size());
}

}  // namespace

keyboard::keyboard(const user_side& side, key_sink on_key) : side_(side), on_key_(std::move(on_key)), mode_(side.input) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) throw std::runtime_error("Keys cannot be read");
    wake_in_ = system::descriptor(ends[1]);
    wake_out_ = system::descriptor(ends[0]);
    reader_ = std::thread([this] { read_keys(); });
}

keyboard::~keyboard() {
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
    }
    changed_.notify_all();
    wake();
    reader_.join();
}

void keyboard::wake() { (void)!::write(wake_in_.get(), "", 1); }

void keyboard::suspend() {
    std::unique_lock lock(mutex_);
    is_suspended_ = true;
    wake();
    changed_.wait(lock, [this] { return !is_reading_; });
    mode_.suspend();
}

void keyboard::resume() {
    mode_.resume();
    const std::lock_guard lock(mutex_);
    is_suspended_ = false;
    changed_.notify_all();
}

void keyboard::read_keys() {
    constexpr int look_again_ms = 200;
    std::array<char, 256> buffer{};
    for (bool is_open = true; is_open;) {
        std::unique_lock lock(mutex_);
        is_reading_ = false;
        changed_.notify_all();
        changed_.wait(lock, [this] { return !is_suspended_ || is_ending_; });
        if (is_ending_) return;
        is_reading_ = true;
        lock.unlock();

        const bool may_read = mode_.resume() && side_.is_in_foreground(side_.input);
        std::array<pollfd, 2> ready{{{wake_out_.get(), POLLIN, 0}, {may_read ? side_.input : -1, POLLIN, 0}}};
        ::poll(ready.data(), ready.size(), may_read ? -1 : look_again_ms);
        while (::read(wake_out_.get(), buffer.data(), buffer.size()) > 0) continue;
        if (ready[1].revents == 0 || ready[0].revents != 0 || !side_.is_in_foreground(side_.input)) continue;
        const auto size = ::read(side_.input, buffer.data(), buffer.size());
        is_open = size > 0;
        for (std::string_view text(buffer.data(), is_open ? static_cast<std::size_t>(size) : 0); !text.empty();) {
            const auto length = text.front() == '\x1b' ? sequence_length(text) : titleformat::first_character(text).length;
            on_key_(std::string(text.substr(0, length)));
            text.remove_prefix(length);
        }
    }
    const std::lock_guard lock(mutex_);  // the terminal is gone
    is_reading_ = false;
    changed_.notify_all();
}

}  // namespace ostrevan::terminal
