#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "player/core/main_loop.h"
#include "player/view/front_end.h"

namespace ostrevan::app {

/// The front end that services see: passes every call on to that of the current job, so that who began something is asked
/// about it. Replies arrive on the main thread as work of the job that asked, which is not idle before.
class job_front_ends final : public view::front_end {
public:
    /// `main` is for everything else.
    job_front_ends(core::main_loop& loop, view::front_end& main) : loop_(loop), main_(&main, [](auto*) {}) {}

    // [any-thread]
    void add(const core::job_ptr& job, std::shared_ptr<view::front_end> ui);
    void remove(const core::job_ptr& job);

    void print_line(const std::string& line) override { current()->print_line(line); }
    void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) override {
        current()->show_message(text, title, icon);
    }
    void ask(popup_message_v3::query_t query) override;
    void ask_file(file_dialog_service::query_t query) override;
    void show_dialog(std::shared_ptr<view::open_dialog> dialog) override { current()->show_dialog(std::move(dialog)); }
    void show_listing(const view::track_listing& listing) override { current()->show_listing(listing); }
    void show_progress(const std::string& what, std::size_t done, std::size_t total) override {
        current()->show_progress(what, done, total);
    }
    void end_progress() override { current()->end_progress(); }
    void beep() override { current()->beep(); }
    void note_failure() override { current()->note_failure(); }

private:
    [[nodiscard]] std::shared_ptr<view::front_end> current() const;

    core::main_loop& loop_;
    const std::shared_ptr<view::front_end> main_;
    mutable std::mutex mutex_;
    std::map<core::job_ptr, std::shared_ptr<view::front_end>> others_;
};

}  // namespace ostrevan::app
