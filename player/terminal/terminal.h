#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "player/terminal/prepared_answers.h"
#include "player/terminal/standard_output.h"
#include "player/view/front_end.h"

namespace ostrevan::terminal {

/// The front end on a terminal: lists go to standard output, as the results of the commands do, everything else to standard
/// error. Questions are asked on the terminal; without one, the answers given on the command line hold, and a question that
/// nobody answers counts as declined.
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

    /// A line that is not a result: left out when quiet.
    void note(const std::string& line);
    void error(const std::string& line);
    /// A note that names the file as well, when one was asked for. Left out when the work has failed, was declined or
    /// interrupted, or has shown a list.
    void note_done(const std::string& what);
    /// Tells of answers on the command line that nothing has asked for.
    void note_unused_answers();

    /// What the process answers, as far as the user has been told.
    [[nodiscard]] int exit_status() const noexcept;

private:
    void write_line(const std::string& line);
    void clear_progress();

    /// Whether somebody can be asked. False as well when all answers are given.
    [[nodiscard]] bool can_ask() const;
    /// A line that the user types after a prompt; none when he interrupts or ends the input.
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
    bool progress_shown_ = false;
    long long last_drawn_ms_ = 0;

    bool is_misused_ = false;
    unsigned failures_ = 0;
    unsigned declined_ = 0;
    bool labels_used_ = false;
    std::optional<std::string> file_asked_for_;
    bool list_shown_ = false;
    bool file_used_ = false;
    // While a dialog is open: what had failed and been declined before its OK was pressed, and declined before it opened.
    unsigned known_troubles_ = 0;
    unsigned declined_before_ = 0;
};

}  // namespace ostrevan::terminal
