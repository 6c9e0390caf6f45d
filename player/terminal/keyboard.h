#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "player/system/descriptor.h"
#include "player/system/raw_terminal.h"
#include "player/terminal/user_side.h"

namespace ostrevan::terminal {

/// Reads single keys from the user's input, which must be a terminal, on a thread of its own.
class keyboard {
public:
    /// Receives a key as the terminal sends it: a character, or a whole escape sequence. [any-thread]
    using key_sink = std::function<void(const std::string& key)>;

    keyboard(const user_side& side, key_sink on_key);
    ~keyboard();
    keyboard(const keyboard&) = delete;
    keyboard& operator=(const keyboard&) = delete;

    /// Between these two, whole lines can be read.
    void suspend();
    void resume();

private:
    void read_keys();
    void wake();

    const user_side side_;
    const key_sink on_key_;
    system::raw_terminal mode_;
    system::descriptor wake_in_, wake_out_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool is_suspended_ = false;
    bool is_ending_ = false;
    bool is_reading_ = false;
    std::thread reader_;
};

/// Gives the input back while it lives; does nothing without a keyboard.
class keyboard_pause {
public:
    explicit keyboard_pause(keyboard* keys) : keys_(keys) {
        if (keys_ != nullptr) keys_->suspend();
    }
    ~keyboard_pause() {
        if (keys_ != nullptr) keys_->resume();
    }
    keyboard_pause(const keyboard_pause&) = delete;
    keyboard_pause& operator=(const keyboard_pause&) = delete;

private:
    keyboard* const keys_;
};

}  // namespace ostrevan::terminal
