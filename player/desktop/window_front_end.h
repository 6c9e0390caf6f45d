#pragma once

#include <QDialog>
#include <QPointer>
#include <atomic>
#include <vector>

#include "player/desktop/shown_parts.h"
#include "player/view/front_end.h"

namespace ostrevan::desktop {

/// Whatever the player says and asks, in a window. Several questions may be open; none of them keeps the window from
/// being used.
class window_front_end final : public view::front_end {
public:
    explicit window_front_end(shown_parts& parts) : parts_(parts) {}

    /// Declines the open questions of a job, or of all of them.
    void decline(const core::job_ptr& of);
    void decline_all();
    /// The window shows nothing any more; what is still said goes to standard error.
    void leave_window() noexcept { has_left_ = true; }

    void print_line(const std::string& line) override;
    void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) override;
    void ask(popup_message_v3::query_t query) override;
    void ask_file(file_dialog_service::query_t query) override;
    void show_dialog(std::shared_ptr<view::open_dialog> dialog) override;
    void show_listing(const view::track_listing& listing) override { parts_.show_listing(listing); }
    void show_progress(const std::string& what, std::size_t done, std::size_t total) override {
        parts_.show_progress(core::job::current(), what, done, total);
    }
    void end_progress() override { parts_.end_progress(core::job::current()); }
    void beep() override;
    void note_failure() override { parts_.expect_failure(); }

private:
    struct question {
        QPointer<QDialog> box;
        core::job_ptr of;
    };
    void open(QDialog& box);

    shown_parts& parts_;
    std::atomic<bool> has_left_ = false;
    std::vector<question> open_;
};

}  // namespace ostrevan::desktop
