#include "player/cli/terminal.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>

#include "player/cli/table.h"
#include "player/front/interrupt.h"

namespace ostrevan::cli {
namespace {

long long now_ms() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::string bar(std::size_t done, std::size_t total) {
    constexpr std::size_t width = 24;
    const auto filled = total == 0 ? 0 : std::min(width, width * done / total);
    return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "]";
}

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

/// False when the user interrupts first. A signal that comes while a line is being read would go unnoticed.
bool wait_for_input() {
    constexpr int look_again_ms = 100;
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (!front::interrupted())
        if (::poll(&input, 1, look_again_ms) > 0) return true;
    return false;
}

}  // namespace

terminal::terminal(bool quiet, std::optional<bool> answer)
    : quiet_(quiet), answer_(answer), draws_progress_(!quiet && ::isatty(STDERR_FILENO) != 0) {}

void terminal::clear_progress() {
    if (!progress_shown_) return;
    std::fputs("\r\033[K", stderr);
    progress_shown_ = false;
}

void terminal::write_line(const std::string& line) {
    const std::lock_guard lock(mutex_);
    clear_progress();
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", line.c_str());
}

void terminal::print_line(const std::string& line) { write_line(line); }

void terminal::note(const std::string& line) {
    if (!quiet_) write_line(line);
}

void terminal::error(const std::string& line) {
    failed_ = true;
    write_line("ostrevan: " + line);
}

void terminal::show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) {
    if (icon == popup_message::icon_error) failed_ = true;
    write_line(title + ": " + text);
}

std::optional<bool> terminal::ask_on_terminal(const std::string& prompt) {
    for (;;) {
        std::fputs(prompt.c_str(), stderr);
        std::fflush(stderr);
        std::string line;
        if (!wait_for_input()) {
            std::fputc('\n', stderr);
            return false;
        }
        if (!std::getline(std::cin, line)) return std::nullopt;
        if (line.empty()) continue;
        switch (line.front()) {
            case 'y':
            case 'Y':
            case 'o':
            case 'O':
                return true;
            case 'n':
            case 'N':
            case 'c':
            case 'C':
                return false;
            default:
                break;
        }
    }
}

unsigned terminal::ask(const popup_message_v3::query_t& query) {
    const auto& choice = buttons_of(query.style);
    write_line(query.title + ": " + query.text);
    constexpr unsigned icon_mask = 0xF0;
    if ((query.style & icon_mask) == popup_message_v3::style_icon_error) failed_ = true;
    if (choice.yes == choice.no) return choice.yes;

    auto answer = answer_;
    if (!answer && ::isatty(STDIN_FILENO) != 0) answer = ask_on_terminal(choice.prompt);
    if (!answer) write_line("Nobody is there to answer; use --yes or --no. Taken as declined.");
    if (answer.value_or(false)) return choice.yes;
    declined_ = true;
    return choice.no;
}

void terminal::show_listing(const front::track_listing& listing) {
    std::vector<table::column> heads;
    for (const auto& column : listing.columns) heads.push_back({column.name, column.align_right});
    table out(std::move(heads));
    for (const auto& row : listing.rows) out.add_row(row);
    end_progress();
    std::cout << out.text(terminal_width());
}

void terminal::show_progress(const std::string& what, std::size_t done, std::size_t total) {
    if (!draws_progress_) return;
    constexpr long long redraw_ms = 80;
    const std::lock_guard lock(mutex_);
    const auto now = now_ms();
    if (progress_shown_ && now - last_drawn_ms_ < redraw_ms && done != total) return;
    last_drawn_ms_ = now;
    const auto count = std::to_string(done) + (total == 0 ? "" : " of " + std::to_string(total));
    std::fprintf(stderr, "\r\033[K%s %s %s", bar(done, total).c_str(), count.c_str(), what.c_str());
    std::fflush(stderr);
    progress_shown_ = true;
}

void terminal::end_progress() {
    const std::lock_guard lock(mutex_);
    clear_progress();
}

void terminal::beep() {
    const std::lock_guard lock(mutex_);
    if (::isatty(STDERR_FILENO) != 0) std::fputc('\a', stderr);
}

}  // namespace ostrevan::cli
