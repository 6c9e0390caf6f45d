#include "player/terminal/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "player/system/interrupt.h"
#include "player/system/raw_terminal.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/table.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

long long now_ms() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Empty while the total is unknown.
std::string bar(std::size_t done, std::size_t total) {
    constexpr std::size_t width = 24;
    if (total == 0) return {};
    const auto filled = std::min(width, width * done / total);
    return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "] ";
}

/// Whether standard error is a terminal that understands escape codes.
bool can_redraw() {
    const char* const kind = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) != 0 && kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
}

void put_on_stderr(const std::string& text) {
    const auto shown = ::isatty(STDERR_FILENO) != 0 ? shown_on_terminal(text) : text;
    std::fwrite(shown.data(), 1, shown.size(), stderr);
}

}  // namespace

terminal::terminal(bool quiet, prepared_answers answers, standard_output& output)
    : quiet_(quiet), answers_(std::move(answers)), draws_progress_(!quiet && can_redraw()), output_(output) {
    output_.before_writing([this] { end_progress(); });
}

terminal::~terminal() {
    end_progress();
    output_.before_writing({});
}

void terminal::clear_progress() {
    if (drawn_.empty()) return;
    // A terminal that has become narrower has wrapped the line.
    const auto width = terminal_width(STDERR_FILENO);
    const auto rows_above = width == 0 ? 0 : (std::max<std::size_t>(display_width(drawn_), 1) - 1) / width;
    if (rows_above > 0) std::fprintf(stderr, "\033[%zuA", rows_above);
    std::fputs(rows_above > 0 ? "\r\033[J" : "\r\033[K", stderr);
    drawn_.clear();
}

/// One row only; the last column stays free, since some terminals wrap there.
void terminal::draw(const std::string& line, std::size_t width) {
    clear_progress();
    drawn_ = width == 0 ? line : shortened(line, width - 1);
    std::fputs(drawn_.c_str(), stderr);
    std::fflush(stderr);
}

void terminal::show_line(const std::string& text, const std::vector<std::string>& details) {
    if (!draws_progress_ || !system::is_in_foreground(STDERR_FILENO)) return;
    constexpr std::size_t least_text = 20, gap = 2;
    const auto width = terminal_width(STDERR_FILENO);
    auto shown = shown_on_terminal(text);
    std::ranges::replace_if(
        shown, [](char each) { return each == '\n' || each == '\t'; }, ' ');
    const auto room = width == 0 ? std::string::npos : width - 1;
    std::string after;
    for (const auto& each : details) {
        if (each.empty()) continue;
        const auto longer = after + std::string(gap, ' ') + shown_on_terminal(each);
        if (display_width(longer) + std::min(least_text, display_width(shown)) > room) break;
        after = longer;
    }
    const auto line = (room == std::string::npos ? shown : shortened(shown, room - display_width(after))) + after;
    const std::lock_guard lock(mutex_);
    if (line != drawn_) draw(line, width);
}

void terminal::read_keys(keyboard::key_sink on_key) {
    if (::isatty(STDIN_FILENO) != 0) keys_.emplace(std::move(on_key));
}

void terminal::write_line(const std::string& line) {
    output_.flush();
    const std::lock_guard lock(mutex_);
    clear_progress();
    put_on_stderr(line + "\n");
}

void terminal::print_line(const std::string& line) { write_line(line); }

void terminal::note(const std::string& line) {
    if (!quiet_) write_line(line);
}

void terminal::note_done(const std::string& what) {
    if (exit_status() != exit_done || list_shown_ || system::interrupted()) return;
    note(what + (file_asked_for_ ? ": " + *file_asked_for_ : "") + ".");
}

void terminal::error(const std::string& line) {
    ++failures_;
    write_line("ostrevan: " + line);
}

void terminal::show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) {
    if (icon == popup_message::icon_error) ++failures_;
    write_line(title + ": " + text);
}

void terminal::show_listing(const view::track_listing& listing) {
    std::vector<table::column> heads;
    for (const auto& column : listing.columns) heads.push_back({column.name, column.align_right});
    table out(std::move(heads));
    for (const auto& row : listing.rows) out.add_row(row);
    list_shown_ = true;
    end_progress();
    std::cout << out.text(terminal_width(STDOUT_FILENO));
}

void terminal::show_progress(const std::string& what, std::size_t done, std::size_t total) {
    if (!draws_progress_ || !system::is_in_foreground(STDERR_FILENO)) return;
    constexpr long long redraw_ms = 80;
    const std::lock_guard lock(mutex_);
    const auto now = now_ms();
    if (!drawn_.empty() && now - last_drawn_ms_ < redraw_ms && done != total) return;
    last_drawn_ms_ = now;
    const auto count = std::to_string(done) + (total == 0 ? "" : " of " + std::to_string(total));
    draw(shown_on_terminal(bar(done, total) + count + " " + what), terminal_width(STDERR_FILENO));
}

void terminal::end_progress() {
    const std::lock_guard lock(mutex_);
    clear_progress();
}

void terminal::beep() {
    const std::lock_guard lock(mutex_);
    if (can_redraw()) std::fputc('\a', stderr);
}

int terminal::exit_status() const noexcept {
    if (is_misused_) return exit_usage;
    if (failures_ != 0) return exit_failed;
    return declined_ != 0 ? exit_declined : exit_done;
}

}  // namespace ostrevan::terminal
