// The questions of the terminal: messages, dialogs, file names.
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <thread>
#include <utility>

#include "player/system/local_path.h"
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

std::optional<bool> meaning_of(const std::string& line) {
    const std::string_view yes = "yYoO", no = "nNcC";
    if (line.empty()) return std::nullopt;
    if (yes.find(line.front()) != std::string_view::npos) return true;
    if (no.find(line.front()) != std::string_view::npos) return false;
    return std::nullopt;
}

/// Expands a path like a shell.
std::string with_home(std::string path, const std::string& home) {
    if (!home.empty() && path.starts_with("~/")) path.replace(0, 1, home);
    return path;
}

/// Others may have another current folder.
std::string path_for_others(const std::string& path) {
    return system::protocol_of(path).empty() ? std::filesystem::absolute(path).string() : path;
}

/// Ends even a dialog whose rules ignore Cancel.
void cancel(view::open_dialog& dialog) {
    dialog.loop().call([&] {
        if (dialog.is_open()) dialog.press(dialog_cancel);
        dialog.close();
    });
}

}  // namespace

bool terminal::can_ask() const { return !answers_.yes && ::isatty(side_.input) != 0; }

/// A signal during a blocking read would go unnoticed.
std::optional<std::string> terminal::next_line() {
    constexpr int look_again_ms = 100;
    pollfd input{side_.input, POLLIN, 0};
    for (;;) {
        if (const auto end = typed_.find('\n'); end != std::string::npos) {
            const auto line = typed_.substr(0, end);
            typed_.erase(0, end + 1);
            return line;
        }
        if (job_->stop()) return std::nullopt;
        if (::poll(&input, 1, look_again_ms) <= 0) continue;
        if (!is_in_foreground(side_.input)) {  // what is typed is for another job
            std::this_thread::sleep_for(std::chrono::milliseconds(look_again_ms));
            continue;
        }
        std::array<char, 4096> block{};
        const auto size = ::read(side_.input, block.data(), block.size());
        if (size < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (size > 0) typed_.append(block.data(), static_cast<std::size_t>(size));
        else if (typed_.empty()) return std::nullopt;
        else return std::exchange(typed_, {});
    }
}

std::optional<std::string> terminal::read_line(const std::string& prompt) {
    const keyboard_pause pause(keys_ ? &*keys_ : nullptr);
    output_.flush();
    put(shown_on_terminal(prompt));
    auto line = next_line();
    if (!line) put("\n");
    return line;
}

void terminal::decline(const char* way_out) {
    print_line(std::string("Nobody is there to answer; use ") + way_out + ". Taken as declined.");
    ++declined_;
}

unsigned terminal::ask(const popup_message_v3::query_t& query) {
    const auto& choice = buttons_of(query.style);
    constexpr unsigned icon_mask = 0xF0;
    if ((query.style & icon_mask) == popup_message_v3::style_icon_error) ++failures_;
    print_line(query.title + ": " + query.text);
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
    if (answers_.file) return path_for_others(*(file_asked_for_ = answers_.file));
    if (::isatty(side_.input) != 0 && answers_.yes.value_or(true)) {
        const auto line = read_line(query.title + ": path of the file (empty to cancel): ");
        if (line && !line->empty()) return path_for_others(*(file_asked_for_ = with_home(*line, side_.home)));
        ++declined_;
    } else {
        print_line(query.title + ": a file has to be named.");
        decline("--file PATH");
    }
    return std::nullopt;
}

void terminal::show_dialog(view::open_dialog& dialog) {
    labels_used_ = true;
    try {
        dialog.loop().call([&] { apply_labels(dialog); });
    } catch (const system::user_error& wrong) {
        error(wrong.what());
        is_misused_ = true;
        return cancel(dialog);
    }
    if (can_ask()) ask_in_dialog(dialog);
    else answer_dialog(dialog);
}

void terminal::apply_labels(view::open_dialog& dialog) const {
    for (const auto& label : answers_.check) apply_label(dialog, label, true);
    for (const auto& label : answers_.uncheck) apply_label(dialog, label, false);
}

void terminal::ask_in_dialog(view::open_dialog& dialog) {
    const auto declined_before = declined_;
    auto effect = input_effect::none;
    for (;;) {
        const auto text =
            dialog.loop().call([&] { return dialog.is_open() ? std::optional(dialog_text(dialog)) : std::nullopt; });
        if (!text) break;
        print_line(*text);
        const auto line = read_line(" number to change, [o]k or [c]ancel: ");
        if (!line) {
            ++declined_;
            return cancel(dialog);
        }
        effect = dialog.loop().call([&] { return apply_input(dialog, *line); });
        job_->wait_until_idle();  // further questions come before the dialog is shown again
        if (effect == input_effect::none) print_line("\"" + *line + "\" is none of these.");
        if (effect == input_effect::cancel_pressed) ++declined_;
    }
    // Earlier refusals, such as of the first file name, no longer count.
    if (effect == input_effect::ok_pressed) declined_ = declined_before;
}

void terminal::answer_dialog(view::open_dialog& dialog) {
    const std::string title = dialog.layout().title;
    if (answers_.yes.value_or(false)) {
        const auto troubles = failures_ + declined_;
        dialog.loop().call([&] { dialog.press(dialog_ok); });
        job_->wait_until_idle();
        const auto labels =
            dialog.loop().call([&] { return dialog.is_open() ? std::optional(labels_of(dialog)) : std::nullopt; });
        if (labels && troubles == failures_ + declined_)
            error("\"" + title +
                  "\" does not take OK as it stands, and nobody is there to change it. Use --check with one of: " + *labels +
                  ".");
    } else if (answers_.yes) {
        ++declined_;
    } else {
        print_line(dialog.loop().call([&] { return dialog_text(dialog); }));
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
