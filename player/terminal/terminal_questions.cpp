// The questions of the terminal: messages, dialogs, file names.
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "player/system/interrupt.h"
#include "player/system/user_error.h"
#include "player/terminal/dialog_text.h"
#include "player/terminal/terminal.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

struct buttons {
    unsigned style;
    const char* prompt;
    unsigned yes;
    unsigned no;
};
constexpr buttons button_table[] = {
    {popup_message_v3::style_ok, "", popup_message_v3::answer_ok, popup_message_v3::answer_ok},
    {popup_message_v3::style_ok_cancel, " [o]k / [c]ancel: ", popup_message_v3::answer_ok, popup_message_v3::answer_cancel},
    {popup_message_v3::style_yes_no, " [y]es / [n]o: ", popup_message_v3::answer_yes, popup_message_v3::answer_no},
};

const buttons& buttons_of(unsigned style) {
    constexpr unsigned button_mask = 0xF;
    for (const auto& entry : button_table)
        if (entry.style == (style & button_mask)) return entry;
    return button_table[0];
}

/// Returns false on interruption. A signal during a blocking read would go unnoticed.
bool wait_for_input() {
    constexpr int look_again_ms = 100;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (!system::interrupted())
        if (::poll(&input, 1, look_again_ms) > 0) return true;
    return false;
}

std::optional<bool> meaning_of(const std::string& line) {
    const std::string_view yes = "yYoO", no = "nNcC";
    if (line.empty()) return std::nullopt;
    if (yes.find(line.front()) != std::string_view::npos) return true;
    if (no.find(line.front()) != std::string_view::npos) return false;
    return std::nullopt;
}

/// Expands a path like a shell.
std::string with_home(std::string path) {
    const char* const home = std::getenv("HOME");
    if (home != nullptr && path.starts_with("~/")) path.replace(0, 1, home);
    return path;
}

/// Ends even a dialog whose rules ignore Cancel.
void cancel(view::open_dialog& dialog) {
    if (dialog.is_open()) dialog.press(dialog_cancel);
    dialog.close();
}

}  // namespace

bool terminal::can_ask() const { return !answers_.yes && ::isatty(STDIN_FILENO) != 0; }

std::optional<std::string> terminal::read_line(const std::string& prompt) {
    const keyboard_pause pause(keys_ ? &*keys_ : nullptr);
    output_.flush();
    std::fputs(shown_on_terminal(prompt).c_str(), stderr);
    std::fflush(stderr);
    std::string line;
    if (wait_for_input() && std::getline(std::cin, line)) return line;
    std::fputc('\n', stderr);
    return std::nullopt;
}

void terminal::decline(const char* way_out) {
    write_line(std::string("Nobody is there to answer; use ") + way_out + ". Taken as declined.");
    ++declined_;
}

unsigned terminal::ask(const popup_message_v3::query_t& query) {
    const auto& choice = buttons_of(query.style);
    constexpr unsigned icon_mask = 0xF0;
    if ((query.style & icon_mask) == popup_message_v3::style_icon_error) ++failures_;
    write_line(query.title + ": " + query.text);
    if (choice.yes == choice.no) return choice.yes;

    auto answer = answers_.yes;
    if (can_ask()) {
        auto line = read_line(choice.prompt);
        while (line && !meaning_of(*line)) line = read_line(choice.prompt);
        answer = line && *meaning_of(*line);
    }
    if (answer.value_or(false)) return choice.yes;
    if (answer) ++declined_;
    else decline("--yes or --no");
    return choice.no;
}

std::optional<std::string> terminal::ask_file(const file_dialog_service::query_t& query) {
    file_used_ = true;
    if (answers_.file) return file_asked_for_ = answers_.file;
    if (::isatty(STDIN_FILENO) != 0 && answers_.yes.value_or(true)) {
        const auto line = read_line(std::string(query.title) + ": path of the file (empty to cancel): ");
        if (line && !line->empty()) return file_asked_for_ = with_home(*line);
        ++declined_;
    } else {
        write_line(std::string(query.title) + ": a file has to be named.");
        decline("--file PATH");
    }
    return std::nullopt;
}

void terminal::show_dialog(view::open_dialog& dialog, unsigned turn) {
    try {
        if (turn == 0) declined_before_ = declined_;
        if (turn == 0) apply_labels(dialog);
    } catch (const system::user_error& wrong) {
        error(wrong.what());
        is_misused_ = true;
        return cancel(dialog);
    }
    if (can_ask()) ask_in_dialog(dialog);
    else answer_dialog(dialog, turn);
}

void terminal::apply_labels(view::open_dialog& dialog) {
    labels_used_ = true;
    for (const auto& label : answers_.check) apply_label(dialog, label, true);
    for (const auto& label : answers_.uncheck) apply_label(dialog, label, false);
}

void terminal::ask_in_dialog(view::open_dialog& dialog) {
    write_line(dialog_text(dialog));
    const auto line = read_line(" number to change, [o]k or [c]ancel: ");
    if (!line) {
        ++declined_;
        return cancel(dialog);
    }
    const auto effect = apply_input(dialog, *line);
    if (effect == input_effect::none) write_line("\"" + *line + "\" is none of these.");
    if (effect == input_effect::cancel_pressed) ++declined_;
    // Earlier refusals, such as of the first file name, no longer count.
    if (effect == input_effect::ok_pressed && !dialog.is_open()) declined_ = declined_before_;
}

void terminal::answer_dialog(view::open_dialog& dialog, unsigned turn) {
    const auto troubles = failures_ + declined_;
    if (turn == 0 && answers_.yes.value_or(false)) {
        known_troubles_ = troubles;
        return dialog.press(dialog_ok);
    }
    const std::string title = dialog.layout().title;
    if (turn != 0 && troubles == known_troubles_)
        error("\"" + title +
              "\" does not take OK as it stands, and nobody is there to change it. Use --check with one of: " +
              labels_of(dialog) + ".");
    if (turn == 0 && answers_.yes) ++declined_;
    if (turn == 0 && !answers_.yes) {
        write_line(dialog_text(dialog));
        decline("--yes or --no, with --check and --uncheck to choose");
    }
    cancel(dialog);
}

void terminal::note_unused_answers() {
    if (!labels_used_ && !(answers_.check.empty() && answers_.uncheck.empty()))
        note("--check and --uncheck were not used: no dialog was opened.");
    if (!file_used_ && answers_.file) note("--file was not used: no file was asked for.");
}

}  // namespace ostrevan::terminal
