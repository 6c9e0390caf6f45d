// What every front end must do, whoever is before it. Each test program says who that is, and instantiates the suite.
#pragma once

#include <gtest/gtest.h>

#include <map>

#include "player/app/job_front_ends.h"
#include "player/core/job_thread.h"
#include "player/services/dialog_registry.h"
#include "player/services/dialog_service.h"
#include "player/services/player_api.h"

namespace ostrevan {
/// How the user answers everything.
struct answers {
    bool yes = true;
    std::string file{};
};

/// Somebody before a front end of a job.
struct user {
    virtual ~user() = default;
    virtual view::front_end& ui() = 0;
    /// Answers what is asked next: a question, the name of a file, or a dialog, whose box "Two" is unchecked before OK.
    virtual void answer_question() {}
    virtual void answer_file() {}
    virtual void answer_dialog() {}
    /// What was shown so far; asked when the job is idle.
    virtual std::string shown() = 0;
    /// Runs the loop until the work is done and nothing is left.
    virtual void run(core::main_loop& loop, const std::atomic<bool>& /*is_done*/) { loop.run_until_idle(); }
};

using make_user = std::unique_ptr<user> (*)(const core::job_ptr& job, const answers& given);
template <typename User>
std::unique_ptr<user> a_user(const core::job_ptr& job, const answers& given) {
    return std::make_unique<User>(job, given);
}
extern const std::map<std::string, make_user> users;

inline constexpr dialog_control boxes[]{{11, dialog_control_kind::check_box, "One"},
                                        {12, dialog_control_kind::check_box, "Two"}};

/// Tells what becomes of a dialog.
struct rules : dialog_rules {
    explicit rules(std::string& told, bool fails = false) : told_(told), fails_(fails) {}
    const dialog_layout& layout() const noexcept override {
        static constexpr dialog_layout drawn{"Fields", "f", 8, boxes};
        return drawn;
    }
    void on_open(dialog_window& window) override {
        for (const auto& box : boxes) window.set_checked(box.id, true);
    }
    void on_button(dialog_window& window, int id) override {
        if (fails_) throw std::runtime_error("broken rules");
        told_ += std::to_string(id) + (window.is_checked(11) ? " one" : "") + (window.is_checked(12) ? " two" : "");
        window.close();
    }
    void on_closed() noexcept override { told_ += " closed"; }
    std::string& told_;
    const bool fails_;
};

class front_ends : public testing::TestWithParam<std::string> {
protected:
    /// Runs work of a job on the main thread, with a user who answers `given`, until the job is idle.
    void run(const answers& given, const std::function<void()>& work) {
        user_ = users.at(GetParam())(job_, given);
        {
            const core::job_thread thread(job_);
            ui_.emplace(loop_, user_->ui());
            std::atomic<bool> is_done = false;
            job_->run_on_own_thread([&, busy = std::make_shared<core::main_loop::activity>(loop_)] {
                loop_.call(work);
                job_->wait_until_idle();
                is_done = true;
            });
            user_->run(loop_, is_done);
        }
        shown_ = user_->shown();
        ui_.reset();
        user_.reset();
    }
    auto reply() {
        return [this](const auto& answer) {
            EXPECT_TRUE(loop_.on_main_thread());
            EXPECT_EQ(core::job::current(), job_);
            if constexpr (std::is_same_v<std::decay_t<decltype(answer)>, unsigned>) told_ += std::to_string(answer) + " ";
            else told_ += answer.value_or("none") + " ";
        };
    }
    void ask() {
        ui_->ask({.text = "Sure?", .title = "T", .style = popup_message_v3::style_yes_no, .reply = reply()});
        told_ += "asked ";
        user_->answer_question();
    }
    void ask_file() {
        ui_->ask_file({.title = "Open", .reply = reply()});
        user_->answer_file();
    }
    void open(bool fails = false) {
        dialogs_.emplace(loop_, *ui_, registry_, api_);
        dialogs_->open(service_new<rules>(told_, fails));
        user_->answer_dialog();
    }

    std::string told_, shown_;
    core::main_loop loop_{[this](const char* what) { told_ += what; }};
    const core::job_ptr job_ = std::make_shared<core::job>();
    std::unique_ptr<user> user_;
    std::optional<app::job_front_ends> ui_;
    core::service_registry services_;
    service_uncounted_t<services::crash_log_service_impl> log_{"/dev/null"};
    services::player_api_impl api_{loop_, services_, log_, "", true};
    service_uncounted_t<services::dialog_registry_impl> registry_;
    std::optional<service_uncounted_t<services::dialog_service_impl>> dialogs_;
};
TEST_P(front_ends, reply_after_the_question_on_the_main_thread_as_the_user_answers) {
    run({.yes = true}, [&] { ask(); });
    EXPECT_EQ(told_, "asked 6 ");
    EXPECT_NE(shown_.find("T: Sure?"), std::string::npos);
    told_.clear();
    run({.yes = false}, [&] { ask(); });
    EXPECT_EQ(told_, "asked 7 ");
}

TEST_P(front_ends, reply_with_an_absolute_path_or_none) {
    run({.file = "x/y.xml"}, [&] { ask_file(); });
    EXPECT_EQ(told_, std::filesystem::current_path().string() + "/x/y.xml ");
    told_.clear();
    run({.yes = false}, [&] { ask_file(); });
    EXPECT_EQ(told_, "none ");
}

TEST_P(front_ends, show_a_dialog_until_it_is_closed) {
    for (const auto& [yes, outcome] : {std::pair{true, "1 one closed"}, {false, "2 one closed"}}) {
        told_.clear();
        run({.yes = yes}, [&] { open(); });
        EXPECT_EQ(told_, outcome);
        EXPECT_TRUE(registry_.can_create_new());
    }
    told_.clear();
    run({}, [&] { open(true); });
    EXPECT_NE(told_.find("broken rules"), std::string::npos);
    EXPECT_TRUE(registry_.can_create_new());
}

TEST_P(front_ends, keep_the_order_of_what_is_said_and_decline_everything_when_the_job_is_stopped) {
    job_->stop() = true;
    run({.yes = false}, [&] {
        for (const char* line : {"first", "second"}) ui_->print_line(line);
        ui_->ask({.text = "Sure?", .title = "T", .style = popup_message_v3::style_yes_no, .reply = reply()});
        ui_->ask_file({.title = "Open", .reply = reply()});
        ui_->print_line("third");
    });
    EXPECT_EQ(told_, "7 none ");
    EXPECT_LT(shown_.find("first"), shown_.find("second"));
    EXPECT_LT(shown_.find("Sure?"), shown_.find("third"));
}

}  // namespace ostrevan
