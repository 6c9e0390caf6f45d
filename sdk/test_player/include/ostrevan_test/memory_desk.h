#pragma once

#include <map>
#include <mutex>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "ostrevan/clipboard.h"
#include "ostrevan/configuration.h"
#include "ostrevan/console.h"
#include "ostrevan/crash_log.h"
#include "ostrevan/popup.h"
#include "ostrevan_test/main_thread_check.h"

/// Messages, questions, console, clipboard, settings.
namespace ostrevan_test {

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

/// While it is blocked nothing can be written or read.
class memory_clipboard : public ostrevan::clipboard_service {
public:
    /// The block in a format; empty when there is none.
    [[nodiscard]] std::vector<std::uint8_t> bytes(const char* format) const {
        std::vector<std::uint8_t> result;
        get(format, result);
        return result;
    }
    virtual void block(bool blocked) { blocked_ = blocked; }

    bool has_format(const char* format) const override {
        require_main_thread("clipboard_service::has_format");
        return format_ == format;
    }
    bool get(const char* format, std::vector<std::uint8_t>& out) const override {
        if (blocked_ || !has_format(format)) return false;
        out = bytes_;
        return true;
    }
    void set(const char* format, std::span<const std::uint8_t> bytes) override {
        require_main_thread("clipboard_service::set");
        if (blocked_) throw std::runtime_error("clipboard cannot be written");
        format_ = format;
        bytes_.assign(bytes.begin(), bytes.end());
    }

private:
    bool blocked_ = false;
    std::string format_;
    std::vector<std::uint8_t> bytes_;
};

class counted_beeps : public ostrevan::beep_service {
public:
    std::size_t count = 0;
    void beep() override {
        require_main_thread("beep");
        ++count;
    }
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

}  // namespace ostrevan_test
