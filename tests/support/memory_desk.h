#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "ostrevan/clipboard.h"
#include "ostrevan/configuration.h"
#include "ostrevan/console.h"
#include "ostrevan/crash_log.h"
#include "ostrevan/popup.h"
#include "tests/support/main_thread_check.h"

/// What the user sees and keeps: messages, questions, console, clipboard, settings.
namespace support {

struct shown_message {
    std::string text;
    std::string title;
    unsigned icon;
    bool operator==(const shown_message&) const = default;
};

/// Messages are recorded; a question stays open until the test answers it.
class recorded_popups : public ostrevan::popup_message {
public:
    std::vector<shown_message> messages;

    /// The questions that wait for an answer, the oldest first.
    std::vector<ostrevan::popup_message_v3::query_t>& questions() noexcept { return questions_.open; }
    void answer(unsigned with) {
        if (questions().empty()) throw std::logic_error("no question is open");
        auto reply = std::move(questions().front().reply);
        questions().erase(questions().begin());
        if (reply) reply(with);
    }

    void show(const char* text, const char* title, icon_t icon) override {
        require_main_thread("popup_message::show");
        messages.push_back({text, title, icon});
    }
    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == ostrevan::popup_message_v3::class_guid ? &questions_ : nullptr;
    }

private:
    class asked_questions : public ostrevan::popup_message_v3 {
    public:
        std::vector<query_t> open;
        void messageBoxAsync(query_t query) override {
            require_main_thread("messageBoxAsync");
            open.push_back(std::move(query));
        }
    };
    ostrevan::service_uncounted_t<asked_questions> questions_;
};

class recorded_console : public ostrevan::console_service {
public:
    std::vector<std::string> lines;
    void print(const char* line) override {
        const std::lock_guard guard(lock_);
        lines.emplace_back(line);
    }

private:
    std::mutex lock_;
};

class recorded_crash_log : public ostrevan::crash_log_service {
public:
    std::vector<std::string> lines;
    void on_event(const char* line) override { lines.emplace_back(line); }
};

/// What "Copy statistics" reaches: memory where the player keeps the clipboard, and the system's own clipboard on Windows.
class memory_clipboard : public ostrevan::clipboard_service {
public:
    memory_clipboard();
    ~memory_clipboard();

    /// The block in a format; empty when there is none.
    [[nodiscard]] std::vector<std::uint8_t> bytes(const char* wanted) const;
    /// While it is blocked nothing can be written or read.
    void block(bool blocked);

    bool has_format(const char* wanted) const override;
    bool get(const char* wanted, std::vector<std::uint8_t>& out) const override;
    void set(const char* new_format, std::span<const std::uint8_t> new_bytes) override;

private:
    struct state;
    std::unique_ptr<state> state_;
};

/// On Windows the linked component's call of the system is counted instead.
class counted_beeps : public ostrevan::beep_service {
public:
    counted_beeps() noexcept { current = this; }
    ~counted_beeps() { current = nullptr; }

    static inline counted_beeps* current = nullptr;
    std::size_t count = 0;
    void beep() override { ++count; }
};

class memory_configuration : public ostrevan::configuration_store {
public:
    std::map<nuv::guid, bool> values;
    bool fail = false;

    bool get_bool(const nuv::guid& id, bool fallback) const override {
        if (fail) throw std::runtime_error("no configuration");
        const auto found = values.find(id);
        return found == values.end() ? fallback : found->second;
    }
    void set_bool(const nuv::guid& id, bool value) override {
        if (fail) throw std::runtime_error("no configuration");
        values[id] = value;
    }
};

}  // namespace support
