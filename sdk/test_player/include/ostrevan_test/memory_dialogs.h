#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/dialog.h"
#include "ostrevan/file_dialog.h"
#include "ostrevan/library_search.h"
#include "ostrevan/progress.h"
#include "ostrevan_test/main_thread_check.h"
#include "ostrevan_test/memory_threads.h"

/// Dialogs, questions for files, searches and progress, drawn nowhere: the test looks at them and acts for the user.
namespace ostrevan_test {

class memory_dialog_registry : public ostrevan::dialog_registry {
public:
    std::size_t pokes = 0;

    bool can_create_new() const noexcept override {
        require_main_thread("can_create_new");
        return open_.empty();
    }
    void poke_existing() override {
        require_main_thread("poke_existing");
        ++pokes;
        if (!open_.empty()) open_.back()->bring_forward();
    }
    void add(ostrevan::registered_dialog& dialog) override { open_.push_back(&dialog); }
    void forget(ostrevan::registered_dialog& dialog) noexcept override { std::erase(open_, &dialog); }

private:
    std::vector<ostrevan::registered_dialog*> open_;
};

using ostrevan::dialog_control_kind;

/// Draws one dialog at a time. Keeps the rules of the contract: radio buttons that follow one another are a group, a dialog
/// closes after its rules have returned, and an unknown id ends the test.
class memory_dialogs : public ostrevan::dialog_service {
public:
    explicit memory_dialogs(memory_dialog_registry& registry) noexcept : window_(registry) {}

    bool fail = false;

    [[nodiscard]] bool is_open() const noexcept { return static_cast<bool>(window_.rules); }
    /// "[ ] text" or "[x] text" for boxes, "( )" and "(*)" for radio buttons, "--" for headings, "< >" for buttons; a "!"
    /// after a disabled control.
    std::vector<std::string> picture() const {
        std::vector<std::string> lines;
        for (const auto& control : window_.rules->layout().controls) {
            const auto& [checked, enabled] = window_.states.at(control.id);
            const char* mark = "--";
            if (control.kind == dialog_control_kind::check_box) mark = checked ? "[x]" : "[ ]";
            if (control.kind == dialog_control_kind::radio_button) mark = checked ? "(*)" : "( )";
            if (control.kind == dialog_control_kind::button) mark = "< >";
            lines.push_back(std::to_string(control.id) + ' ' + mark + ' ' + control.text + (enabled ? "" : " !"));
        }
        return lines;
    }
    /// The window that the dialog returns as its own.
    void* native_window() const noexcept { return window_.native(); }
    void set_checked(int id, bool checked) { window_.set_checked(id, checked); }
    void press(int id) {
        if (!is_open() || !window_.states.at(id).enabled) throw std::logic_error("this button cannot be pressed");
        window_.is_calling = true;
        window_.rules->on_button(window_, id);
        window_.is_calling = false;
        if (window_.closing) window_.end();
    }

    void open(ostrevan::dialog_rules_ptr rules) override {
        require_main_thread("dialog_service::open");
        if (fail) throw std::runtime_error("no dialog can be drawn");
        if (is_open()) throw std::logic_error("a dialog is open already");
        window_.states.clear();
        for (const auto& control : rules->layout().controls) window_.states[control.id] = {};
        window_.closing = false;
        window_.rules = std::move(rules);
        window_.registry.add(window_);
        window_.rules->on_open(window_);
    }

private:
    struct control_state {
        bool checked = false;
        bool enabled = true;
    };
    struct window final : ostrevan::dialog_window, ostrevan::registered_dialog {
        explicit window(memory_dialog_registry& known) noexcept : registry(known) {}
        bool is_checked(int id) const override { return states.at(id).checked; }
        void set_checked(int id, bool checked) override {
            if (checked)
                for (const auto& other : ostrevan::radio_group(rules->layout(), id)) states.at(other.id).checked = false;
            states.at(id).checked = checked;
        }
        void set_enabled(int id, bool enabled) override { states.at(id).enabled = enabled; }
        void close() override {
            closing = true;
            if (!is_calling) end();
        }
        void end() {
            registry.forget(*this);
            std::exchange(rules, {})->on_closed();
        }
        void* native() const noexcept override { return const_cast<bool*>(&closing); }
        void bring_forward() override {}

        memory_dialog_registry& registry;
        ostrevan::dialog_rules_ptr rules;
        std::map<int, control_state> states;
        bool closing = false;
        bool is_calling = false;  ///< the rules
    };
    window window_;
};

/// Questions for files have one answer, which comes as a callback of the main thread.
class recorded_file_questions : public ostrevan::file_dialog_service {
public:
    explicit recorded_file_questions(main_thread_queue& replies) noexcept : replies_(replies) {}

    std::optional<std::string> answer;
    std::vector<query_t> queries;

    std::vector<std::string> texts;  ///< of the queries: "open" or "save", title, filter, extension

    void ask(query_t query) override {
        require_main_thread("file_dialog_service::ask");
        texts.push_back((query.save ? "save " : "open ") + query.title + ' ' + query.filter + ' ' + query.default_extension);
        if (query.reply) replies_.add_callback(ostrevan::service_new<reply>(query.reply, answer));
        queries.push_back(std::move(query));
        queries.back().reply = {};
    }

private:
    struct reply : ostrevan::main_thread_callback {
        reply(decltype(query_t::reply) given, std::optional<std::string> chosen)
            : call(std::move(given)), path(std::move(chosen)) {}
        void callback_run() override { call(path); }
        decltype(query_t::reply) call;
        std::optional<std::string> path;
    };
    main_thread_queue& replies_;
};

class recorded_searches : public ostrevan::library_search {
public:
    std::vector<std::string> queries;
    bool fail = false;

    void show(const char* query) override {
        require_main_thread("library_search::show");
        if (fail) throw std::runtime_error("the window is gone");
        queries.emplace_back(query);
    }
};

class recorded_progress : public ostrevan::progress_service {
    struct display : ostrevan::progress_display {
        explicit display(recorded_progress& progress) noexcept : owner(progress) {}
        void set(std::size_t done, std::size_t total) override { owner.steps.emplace_back(done, total); }
        bool is_aborting() const noexcept override { return owner.abort; }
        recorded_progress& owner;
    };

public:
    std::vector<std::string> started;
    std::vector<std::pair<std::size_t, std::size_t>> steps;
    bool abort = false;

    ostrevan::progress_display_ptr start(const char* what) override {
        require_main_thread("progress_service::start");
        started.emplace_back(what);
        return ostrevan::service_new<display>(*this);
    }
};

}  // namespace ostrevan_test
