#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include "player/terminal/terminal_front_end.h"
#include "tests/player/front_end_suite.h"

namespace ostrevan {
namespace {

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

}  // namespace

const std::map<std::string, make_user> users{{"terminal", a_user<user_at_a_terminal>}, {"pipes", a_user<user_with_pipes>}};
INSTANTIATE_TEST_SUITE_P(users, front_ends, testing::Values("terminal", "pipes"), [](const auto& of) { return of.param; });

}  // namespace ostrevan
