#pragma once

#include <mutex>
#include <optional>

#include "player/front/front_end.h"

namespace ostrevan::cli {

/// The front end on a terminal: results go to standard output by the commands themselves, everything else to standard error.
/// Questions are asked on the terminal; without one, the answer given on the command line holds, and a question that nobody
/// answers counts as declined.
class terminal final : public front::front_end {
public:
    terminal(bool quiet, std::optional<bool> answer);

    void print_line(const std::string& line) override;
    void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) override;
    unsigned ask(const popup_message_v3::query_t& query) override;
    void show_listing(const front::track_listing& listing) override;
    void show_progress(const std::string& what, std::size_t done, std::size_t total) override;
    void end_progress() override;
    void beep() override;
    void note_failure() override { failed_ = true; }

    /// A line that is not a result: left out when quiet.
    void note(const std::string& line);
    void error(const std::string& line);

    [[nodiscard]] bool failed() const noexcept { return failed_; }
    [[nodiscard]] bool declined() const noexcept { return declined_; }

private:
    void write_line(const std::string& line);
    void clear_progress();
    std::optional<bool> ask_on_terminal(const std::string& prompt);

    const bool quiet_;
    const std::optional<bool> answer_;
    const bool draws_progress_;
    std::mutex mutex_;
    bool progress_shown_ = false;
    long long last_drawn_ms_ = 0;
    bool failed_ = false;
    bool declined_ = false;
};

}  // namespace ostrevan::cli
