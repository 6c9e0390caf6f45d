#include "player/terminal/terminal.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "player/system/write_all.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/table.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

/// Empty while the total is unknown.
std::string bar(std::size_t done, std::size_t total) {
    constexpr std::size_t width = 24;
    if (total == 0) return {};
    const auto filled = std::min(width, width * done / total);
    return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "] ";
}

bool can_redraw_on(const user_side& side) {
    return ::isatty(side.error) != 0 && !side.terminal_kind.empty() && side.terminal_kind != "dumb";
}

}  // namespace

terminal::terminal(user_side side, core::job_ptr job, bool quiet, prepared_answers answers)
    : side_(std::move(side)),
      job_(std::move(job)),
      quiet_(quiet),
      answers_(std::move(answers)),
      can_redraw_(can_redraw_on(side_)),
      draws_progress_(!quiet && can_redraw_),
      output_(side_.output, job_->stop(), [this] { end_progress(); }) {}

terminal::~terminal() { end_progress(); }

void terminal::put(std::string_view text) { (void)system::write_all(side_.error, text, job_->stop()); }

bool terminal::is_in_foreground(int descriptor) const { return side_.is_in_foreground(descriptor); }

std::size_t terminal::width_of_line() const { return terminal_width(side_.error); }

void terminal::end_progress() {
    if (drawn_.empty()) return;
    // A terminal that has become narrower has wrapped the line.
    const auto width = width_of_line();
    const auto rows_above = width == 0 ? 0 : (std::max<std::size_t>(display_width(drawn_), 1) - 1) / width;
    put(rows_above > 0 ? "\033[" + std::to_string(rows_above) + "A\r\033[J" : "\r\033[K");
    drawn_.clear();
}

/// One row only; the last column stays free, since some terminals wrap there.
void terminal::draw(const std::string& line) {
    end_progress();
    const auto width = width_of_line();
    drawn_ = width == 0 ? line : shortened(line, width - 1);
    put(drawn_);
}

void terminal::show_line(const std::string& text, const std::vector<std::string>& details) {
    if (!draws_progress_ || !is_in_foreground(side_.error)) return;
    constexpr std::size_t least_text = 20, gap = 2;
    const auto width = width_of_line();
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
    if (line != drawn_) draw(line);
}

void terminal::read_keys(keyboard::key_sink on_key) {
    if (::isatty(side_.input) != 0) keys_.emplace(side_, std::move(on_key));
}

void terminal::print_line(const std::string& line) {
    output_.flush();
    end_progress();
    put(::isatty(side_.error) != 0 ? shown_on_terminal(line + "\n") : line + "\n");
}

void terminal::note(const std::string& line) {
    if (!quiet_) print_line(line);
}

void terminal::note_done(const std::string& what) {
    if (exit_status() != exit_done || list_shown_ || job_->stop()) return;
    note(what + (file_asked_for_ ? ": " + *file_asked_for_ : "") + ".");
}

void terminal::error(const std::string& line) {
    ++failures_;
    print_line("ostrevan: " + line);
}

void terminal::show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) {
    if (icon == popup_message::icon_error) ++failures_;
    print_line(title + ": " + text);
}

void terminal::show_listing(const view::track_listing& listing) {
    std::vector<table::column> heads;
    for (const auto& column : listing.columns()) heads.push_back({column.name, column.align_right});
    table shown(std::move(heads));
    std::vector<std::string> cells;
    for (std::size_t row = 0; row < listing.row_count(); ++row) {
        listing.format_row(row, cells);
        shown.add_row(cells);
    }
    show_table(shown);
}

void terminal::show_table(table& shown) {
    list_shown_ = true;
    end_progress();
    shown.write(terminal_width(side_.output), [&](std::string_view line) { output_ << line; });
}

void terminal::show_progress(const std::string& what, std::size_t done, std::size_t total) {
    if (!draws_progress_ || !is_in_foreground(side_.error)) return;
    constexpr auto redraw = std::chrono::milliseconds(80);
    const auto now = std::chrono::steady_clock::now();
    if (!drawn_.empty() && now - last_drawn_ < redraw && done != total) return;
    last_drawn_ = now;
    const auto count = std::to_string(done) + (total == 0 ? "" : " of " + std::to_string(total));
    draw(shown_on_terminal(bar(done, total) + count + " " + what));
}

void terminal::beep() {
    if (can_redraw_) put("\a");
}

int terminal::exit_status() const noexcept {
    if (is_misused_) return exit_usage;
    if (failures_ != 0) return exit_failed;
    return declined_ != 0 ? exit_declined : exit_done;
}

}  // namespace ostrevan::terminal
