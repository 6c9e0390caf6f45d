#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "player/terminal/keyboard.h"
#include "player/terminal/prepared_answers.h"
#include "player/terminal/standard_output.h"
#include "player/view/front_end.h"

namespace ostrevan::terminal {

/// The front end on a terminal: lists and results go to standard output, everything else to standard error. Questions are
/// asked on the terminal; without one, the answers of the command line apply, and a question without an answer counts as
/// declined.
class terminal final : public view::front_end {
public:
    terminal(bool quiet, prepared_answers answers, standard_output& output);
    ~terminal() override;

    void print_line(const std::string& line) override;
    void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) override;
    unsigned ask(const popup_message_v3::query_t& query) override;
    void show_dialog(view::open_dialog& dialog, unsigned turn) override;
    std::optional<std::string> ask_file(const file_dialog_service::query_t& query) override;
    void show_listing(const view::track_listing& listing) override;
    void show_progress(const std::string& what, std::size_t done, std::size_t total) override;
    void end_progress() override;
    void beep() override;
    void note_failure() override { ++failures_; }

    /// Draws one line in the place of the one before, as the progress: a text, cut to what the width leaves, then details,
    /// of which the last ones give way first. Empty ones are left out. Nothing is drawn while nothing has changed.
    void show_line(const std::string& text, const std::vector<std::string>& details);

    /// Passes on keys from now on when standard input is a terminal. Questions are asked as always.
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
    void write_line(const std::string& line);
    void draw(const std::string& line, std::size_t width);
    void clear_progress();

    /// Whether the user can be asked; false also when all answers are given.
    [[nodiscard]] bool can_ask() const;
    /// Reads a line after a prompt; empty on interruption or end of input.
    std::optional<std::string> read_line(const std::string& prompt);
    void decline(const char* way_out);
    void apply_labels(view::open_dialog& dialog);
    void ask_in_dialog(view::open_dialog& dialog);
    void answer_dialog(view::open_dialog& dialog, unsigned turn);

    const bool quiet_;
    const prepared_answers answers_;
    const bool draws_progress_;
    standard_output& output_;
    std::mutex mutex_;
    std::string drawn_;  // the progress on the screen; empty when there is none
    std::optional<keyboard> keys_;
    long long last_drawn_ms_ = 0;

    bool is_misused_ = false;
    unsigned failures_ = 0;
    unsigned declined_ = 0;
    bool labels_used_ = false;
    std::optional<std::string> file_asked_for_;
    bool list_shown_ = false;
    bool file_used_ = false;
    // While a dialog is open: failures and refusals before its OK was pressed, and refusals before it opened.
    unsigned known_troubles_ = 0;
    unsigned declined_before_ = 0;
};

}  // namespace ostrevan::terminal
