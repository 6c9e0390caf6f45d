#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "player/core/job.h"
#include "player/terminal/latest.h"
#include "player/terminal/terminal.h"
#include "player/view/front_end.h"

namespace ostrevan::terminal {

/// The front end of a command on a terminal: has everything done by the terminal on the job's own thread, in the order of
/// the calls, so that no other thread waits for the user. [any-thread]
class terminal_front_end final : public view::front_end {
public:
    /// The terminal must live until the job's own thread has carried out everything.
    terminal_front_end(core::job_ptr job, terminal& screen) : job_(std::move(job)), screen_(screen) {}

    void print_line(const std::string& line) override;
    void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) override;
    void ask(popup_message_v3::query_t query) override;
    void ask_file(file_dialog_service::query_t query) override;
    void show_dialog(std::shared_ptr<view::open_dialog> dialog) override;
    void show_listing(const view::track_listing& listing) override;
    void show_progress(const std::string& what, std::size_t done, std::size_t total) override;
    void end_progress() override;
    void beep() override;
    void note_failure() override;

private:
    struct progress {
        std::string what;
        std::size_t done = 0;
        std::size_t total = 0;
    };
    template <typename Work>
    void run(Work work) {
        job_->run_on_own_thread(std::move(work));
    }

    const core::job_ptr job_;
    terminal& screen_;
    latest<progress> progress_;
};

}  // namespace ostrevan::terminal
