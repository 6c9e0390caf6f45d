#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ostrevan/dialog.h"
#include "ostrevan/file_dialog.h"
#include "ostrevan/library_search.h"
#include "ostrevan/progress.h"

/// Dialogs, questions for files, searches and progress, drawn nowhere: the test looks at them and acts for the user.
namespace support {

class memory_dialog_registry : public ostrevan::dialog_registry {
public:
    std::size_t pokes = 0;

    bool can_create_new() const noexcept override { return open_.empty(); }
    void poke_existing() override {
        ++pokes;
        if (!open_.empty()) open_.back()->bring_forward();
    }
    void add(ostrevan::registered_dialog& dialog) override { open_.push_back(&dialog); }
    void forget(ostrevan::registered_dialog& dialog) noexcept override { std::erase(open_, &dialog); }

private:
    std::vector<ostrevan::registered_dialog*> open_;
};

/// Draws one dialog at a time. Keeps the rules of the contract: radio buttons that follow one another are a group, a dialog
/// closes after its rules have returned, and an unknown id ends the test.
class memory_dialogs : public ostrevan::dialog_service {
public:
    explicit memory_dialogs(memory_dialog_registry& registry) noexcept : window_(registry) {}

    bool fail = false;

    [[nodiscard]] bool is_open() const noexcept { return static_cast<bool>(window_.rules); }
    /// "[ ] text" or "[x] text" for boxes, "( )" and "(*)" for radio buttons, "--" for headings, "< >" for buttons; a "!"
    /// behind what is disabled.
    [[nodiscard]] std::vector<std::string> picture() const;
    void set_checked(int id, bool checked) { window_.set_checked(id, checked); }
    void press(int id);

    void open(ostrevan::dialog_rules_ptr rules) override;

private:
    struct control_state {
        bool checked = false;
        bool enabled = true;
    };
    struct window final : ostrevan::dialog_window, ostrevan::registered_dialog {
        explicit window(memory_dialog_registry& known) noexcept : registry(known) {}
        bool is_checked(int id) const override { return states.at(id).checked; }
        void set_checked(int id, bool checked) override;
        void set_enabled(int id, bool enabled) override { states.at(id).enabled = enabled; }
        void close() override { closing = true; }
        void* native() const noexcept override { return const_cast<bool*>(&closing); }
        void bring_forward() override {}

        memory_dialog_registry& registry;
        ostrevan::dialog_rules_ptr rules;
        std::map<int, control_state> states;
        bool closing = false;
    };
    window window_;

public:
    /// What the dialog answers as its window.
    [[nodiscard]] void* native_window() const noexcept { return window_.native(); }
};

class recorded_file_questions : public ostrevan::file_dialog_service {
public:
    std::optional<std::string> answer;
    std::vector<query_t> queries;

    std::vector<std::string> texts;  ///< of the queries: "open" or "save", title, filter, extension

    std::optional<std::string> ask(const query_t& query) override {
        queries.push_back(query);
        texts.push_back(std::string(query.save ? "save " : "open ") + query.title + ' ' + query.filter + ' ' +
                        query.default_extension);
        return answer;
    }
};

class recorded_searches : public ostrevan::library_search {
public:
    std::vector<std::string> queries;
    bool fail = false;

    void show(const char* query) override;
};

class recorded_progress : public ostrevan::progress_service {
public:
    std::vector<std::string> started;
    std::vector<std::pair<std::size_t, std::size_t>> steps;
    bool abort = false;

    ostrevan::progress_display_ptr start(const char* what) override;
};

}  // namespace support
