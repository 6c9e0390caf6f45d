// What every front end must do, whoever is before it. One that is added joins the list of users below.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <map>

#include "player/app/job_front_ends.h"
#include "player/core/job_thread.h"
#include "player/services/dialog_registry.h"
#include "player/services/dialog_service.h"
#include "player/services/player_api.h"
#include "player/terminal/terminal_front_end.h"

namespace ostrevan {
namespace {

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
};

struct terminal_user : user {
    system::descriptor input, output;  // of the user
    system::descriptor theirs;         // the other end of the output
    std::optional<terminal::terminal> screen;
    std::optional<terminal::terminal_front_end> front_end;

    void sit_down(const core::job_ptr& job, terminal::prepared_answers prepared, int in, int out) {
        ::fcntl(output.get(), F_SETFL, O_NONBLOCK);
        screen.emplace(terminal::user_side{in, out, out, "dumb", "/home", [](int) { return true; }}, job, false,
                       std::move(prepared));
        front_end.emplace(job, *screen);
    }
    view::front_end& ui() override { return *front_end; }
    std::string shown() override {
        std::string text(65536, '\0');
        const auto size = ::read(output.get(), text.data(), text.size());
        return size < 0 ? "" : text.substr(0, static_cast<std::size_t>(size));
    }
};

struct user_at_a_terminal : terminal_user {
    const answers given;
    user_at_a_terminal(const core::job_ptr& job, const answers& wanted) : given(wanted) {
        int master = -1, end = -1;
        ::openpty(&master, &end, nullptr, nullptr, nullptr);
        output = system::descriptor(master);
        theirs = system::descriptor(end);
        sit_down(job, {}, end, end);
    }
    void type(const std::string& text) const { EXPECT_GT(::write(output.get(), text.data(), text.size()), 0); }
    void answer_question() override { type(given.yes ? "what\nyes\n" : "no\n"); }
    void answer_file() override { type(given.file + "\n"); }
    void answer_dialog() override { type(given.yes ? "9\n2\no\n" : "2\nc\n"); }
};

struct user_with_pipes : terminal_user {
    user_with_pipes(const core::job_ptr& job, const answers& given) {
        int ends[2] = {};
        EXPECT_EQ(::pipe(ends), 0);
        output = system::descriptor(ends[0]);
        theirs = system::descriptor(ends[1]);
        input = system::descriptor(::open("/dev/null", O_RDONLY));
        terminal::prepared_answers prepared{.yes = given.yes, .file = {}, .check = {}, .uncheck = {"Two"}};
        if (!given.file.empty()) prepared.file = given.file;
        sit_down(job, prepared, input.get(), ends[1]);
    }
};

using make_user = std::unique_ptr<user> (*)(const core::job_ptr& job, const answers& given);
template <typename User>
std::unique_ptr<user> a_user(const core::job_ptr& job, const answers& given) {
    return std::make_unique<User>(job, given);
}
const std::map<std::string, make_user> users{{"terminal", a_user<user_at_a_terminal>}, {"pipes", a_user<user_with_pipes>}};

constexpr dialog_control boxes[]{{11, dialog_control_kind::check_box, "One"}, {12, dialog_control_kind::check_box, "Two"}};

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
            job_->run_on_own_thread([&, busy = std::make_shared<core::main_loop::activity>(loop_)] {
                loop_.call(work);
                job_->wait_until_idle();
            });
            loop_.run_until_idle();
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
INSTANTIATE_TEST_SUITE_P(users, front_ends, testing::Values("terminal", "pipes"), [](const auto& of) { return of.param; });

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

}  // namespace
}  // namespace ostrevan
