#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "player/core/job.h"
#include "player/terminal/keyboard.h"
#include "player/terminal/prepared_answers.h"
#include "player/terminal/standard_output.h"
#include "player/terminal/table.h"
#include "player/terminal/user_side.h"
#include "player/view/front_end.h"

namespace ostrevan::terminal {

/// The user's side of one command: lists and results go to its output, everything else to its error output. Questions are
/// asked on its terminal; without one, the answers of the command line apply, and a question without an answer counts as
/// declined. Used on the own thread of the job, and waits there.
class terminal final {
public:
    terminal(user_side side, core::job_ptr job, bool quiet, prepared_answers answers);
    ~terminal();
    terminal(const terminal&) = delete;
    terminal& operator=(const terminal&) = delete;

    /// For results.
    [[nodiscard]] std::ostream& out() noexcept { return output_; }
    /// The system's error number of the first failure of `out`; 0 without one.
    [[nodiscard]] int output_error() const noexcept { return output_.error(); }

    void print_line(const std::string& line);
    void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon);
    /// Returns one of the answers of `popup_message_v3`.
    unsigned ask(const popup_message_v3::query_t& query);
    /// Returns an absolute path; empty on cancel.
    std::optional<std::string> ask_file(const file_dialog_service::query_t& query);
    /// Returns when the dialog is closed. What its rules throw closes it and is thrown here.
    void show_dialog(view::open_dialog& dialog);
    void show_listing(const view::track_listing& listing);
    /// At the width of the terminal.
    void show_table(table& shown);
    /// Of the terminal for results; 0 when there is none.
    [[nodiscard]] std::size_t width_of_output() const { return terminal_width(side_.output); }
    void show_progress(const std::string& what, std::size_t done, std::size_t total);
    void end_progress();
    void beep();
    void note_failure() { ++failures_; }

    /// Draws one line in the place of the one before, as the progress: a text, cut to what the width leaves, then details,
    /// of which the last ones give way first. Empty ones are left out. Nothing is drawn while nothing has changed.
    void show_line(const std::string& text, const std::vector<std::string>& details);

    /// Passes on keys from now on when its input is a terminal. Questions are asked as always.
    void read_keys(keyboard::key_sink on_key);
    void stop_keys() { keys_.reset(); }

    /// Prints a line that is not a result, unless quiet.
    void note(const std::string& line);
    void error(const std::string& line);
    /// A note, with the name of the file if one was asked for. Omitted when the work has failed, was declined or
    /// interrupted, or has shown a list.
    void note_done(const std::string& what);
    /// Reports answers of the command line that were never used.
    void note_unused_answers();

    /// The exit status that follows from what the user was told.
    [[nodiscard]] int exit_status() const noexcept;

private:
    void draw(const std::string& line);
    /// Writes to the error output. Nothing can be done about a failure there.
    void put(std::string_view text);
    [[nodiscard]] bool is_in_foreground(int descriptor) const;
    [[nodiscard]] std::size_t width_of_line() const;

    /// Whether the user can be asked; false also when all answers are given.
    [[nodiscard]] bool can_ask() const;
    /// Reads a line after a prompt; empty on interruption or end of input.
    std::optional<std::string> read_line(const std::string& prompt);
    std::optional<std::string> next_line();
    void decline(const char* way_out);
    void apply_labels(view::open_dialog& dialog) const;
    void ask_in_dialog(view::open_dialog& dialog);
    void answer_dialog(view::open_dialog& dialog);

    const user_side side_;
    const core::job_ptr job_;
    const bool quiet_;
    const prepared_answers answers_;
    const bool can_redraw_;  // the error output is a terminal that understands escape codes
    const bool draws_progress_;
    standard_output output_;
    std::string drawn_;  // the progress on the screen; empty when there is none
    std::chrono::steady_clock::time_point last_drawn_{};
    std::string typed_;  // and not yet read as a line
    std::optional<keyboard> keys_;

    bool is_misused_ = false;
    unsigned failures_ = 0;
    unsigned declined_ = 0;
    bool labels_used_ = false;
    std::optional<std::string> file_asked_for_;
    bool list_shown_ = false;
    bool file_used_ = false;
};

}  // namespace ostrevan::terminal
