// Both ends of the socket of a profile, the client's also as it should not be.
#include "player/remote/listener.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <future>

#include "tests/player/temporary_folder.h"

namespace ostrevan::remote {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
namespace fs = std::filesystem;

std::size_t open_descriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator{}));
}

class listening : public temporary_folder {
protected:
    listening() {
        fs::create_directory(path("profile"));
        ::setenv("XDG_RUNTIME_DIR", folder_.c_str(), 1);
    }
    void SetUp() override { place_ = socket_place::of(path("profile")); }

    /// Ends each command by itself with the number in its first word, but for "wait".
    void listen(std::chrono::milliseconds patience = 60s) {
        listener_.emplace(
            *place_,
            [this](const std::shared_ptr<call>& come) {
                if (come->wanted().words[0] != "wait") return come->finish(std::stoi(come->wanted().words[0]));
                waiting_.set_value(come);
            },
            patience);
    }
    [[nodiscard]] channel connect() const { return channel(place_->connect()); }
    /// A command as a client sends it.
    static void ask(const channel& owner, const char* word, std::size_t descriptors = descriptors_of_command) {
        owner.send(command{{word}, "", "", true}, std::vector<int>(descriptors, STDIN_FILENO));
    }
    /// The owner's last word: the status, or the reason.
    static std::string last_word(channel& owner) {
        for (bool is_open = true; is_open;) {
            pollfd polled{owner.socket(), POLLIN, 0};
            if (::poll(&polled, 1, 60'000) == 0) return "(nothing for a minute)";
            is_open = owner.receive();
            if (const auto what = owner.next()) {
                if (const auto* const end = std::get_if<done>(&*what)) return std::to_string(end->status);
                const auto& refused = std::get<refusal>(*what);
                return (refused.is_ending ? "ending: " : "") + refused.reason;
            }
        }
        return "(closed)";
    }

    std::optional<socket_place> place_;
    std::promise<std::shared_ptr<call>> waiting_;
    std::optional<listener> listener_;
};

TEST_F(listening, the_socket_is_private_replaces_a_stale_one_and_is_found_by_every_path_to_the_profile) {
    EXPECT_FALSE(connect().socket() >= 0);
    (void)place_->listen().close();  // as after a kill
    EXPECT_FALSE(connect().socket() >= 0);
    listen();
    EXPECT_EQ(mode(path("ostrevan")), 0700U);
    EXPECT_EQ(mode(place_->path()), 0600U);
    fs::create_symlink("profile", path("link"));
    EXPECT_EQ(socket_place::of(path("link/."))->path(), place_->path());
    EXPECT_FALSE(socket_place::of(path("absent")).has_value());
    auto owner = connect();
    ask(owner, "7");
    EXPECT_EQ(last_word(owner), "7");
    listener_.reset();
    EXPECT_FALSE(fs::exists(place_->path()));
}

TEST_F(listening, a_folder_that_is_too_open_or_of_another_user_or_no_folder_is_refused) {
    const auto refused = [this] {
        EXPECT_THAT(failure_of([this] { (void)place_->listen(); }), HasSubstr("is not a folder of this user alone"));
        EXPECT_THAT(failure_of([this] { (void)place_->connect(); }), HasSubstr("is not a folder of this user alone"));
    };
    const auto runtime = path("ostrevan");
    fs::create_directory(runtime);
    fs::permissions(runtime, fs::perms(0710));
    refused();
    fs::permissions(runtime, fs::perms(0700));
    if (::chown(runtime.c_str(), 65534, 65534) == 0) refused();
    fs::rename(runtime, path("elsewhere"));
    fs::create_symlink("elsewhere", runtime);
    refused();
}

TEST_F(listening, a_long_path_is_no_obstacle) {
    const auto folder = path(std::string(200, 'x'));
    fs::create_directory(folder);
    ::setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    SetUp();
    listen();
    auto owner = connect();
    ask(owner, "1");
    EXPECT_EQ(last_word(owner), "1");
}

TEST_F(listening, a_command_reaches_the_files_of_its_client_and_its_interrupts_reach_the_command) {
    listen();
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const system::descriptor out(ends[0]), in(ends[1]);
    auto owner = connect();
    owner.send(command{{"wait"}, "/h", "vt", false}, std::array{STDIN_FILENO, in.get(), STDERR_FILENO, STDIN_FILENO});
    const auto come = waiting_.get_future().get();
    const auto files = come->take_files();
    EXPECT_EQ(::fcntl(files.output.get(), F_GETFD), FD_CLOEXEC);
    ASSERT_EQ(::write(files.output.get(), "x", 1), 1);
    char heard = 0;
    EXPECT_EQ(::read(out.get(), &heard, 1), 1);
    EXPECT_FALSE(come->is_in_foreground());
    owner.send(foreground{true});
    owner.send(interrupt{});
    std::promise<void> interrupted;
    come->on_interrupt([&] { interrupted.set_value(); });
    interrupted.get_future().get();
    EXPECT_TRUE(come->is_in_foreground());
    std::promise<void> gone;
    come->on_interrupt([] {});
    come->on_interrupt([&, times = 0]() mutable {
        if (++times == 2) gone.set_value();  // the first time at once, for the interrupt before
    });
    owner = channel({});
    gone.get_future().get();
    come->finish(0);
}

TEST_F(listening, a_client_that_breaks_the_rules_costs_its_own_connection_only) {
    listen();
    const auto before = open_descriptors();
    auto patient = connect();
    const std::pair<void (*)(const channel&), const char*> cases[] = {
        {[](const channel& owner) { ask(owner, "1", 3); }, "descriptors are missing"},
        {[](const channel& owner) { ask(owner, "1", 0); }, "descriptors are missing"},
        {[](const channel& owner) { owner.send(interrupt{}); }, "out of place"},
        {[](const channel& owner) { owner.send(done{1}); }, "out of place"},
        {[](const channel& owner) {
             ::send(owner.socket(),
                    "\x7f"
                    "ELF",
                    4, 0);
         },
         "too long"},
        {[](const channel& owner) { ::send(owner.socket(), "\0\0\0\1x", 5, 0); }, "damaged"},
        {[](const channel& owner) { ::send(owner.socket(), "\0\0", 2, 0), ::shutdown(owner.socket(), SHUT_WR); },
         "(closed)"},
        {[](const channel& owner) { ask(owner, "wait"), ask(owner, "wait"); }, "out of place"},
        {[](const channel& owner) { ask(owner, "no number"); }, "stoi"},
    };
    for (const auto& [send, reason] : cases) {
        auto owner = connect();
        send(owner);
        EXPECT_THAT(last_word(owner), HasSubstr(reason));
        waiting_ = {};
    }
    ask(patient, "5");
    EXPECT_EQ(last_word(patient), "5");
    patient = channel({});
    while (open_descriptors() > before) std::this_thread::sleep_for(1ms);
}

TEST_F(listening, more_descriptors_than_a_command_has_are_closed) {
    listen();
    const auto before = open_descriptors();
    for (const std::size_t at_once : {5, 200}) {
        auto owner = connect();
        // A frame of its own, since a client's end has no room for so many.
        const std::vector<int> numbers(at_once, STDIN_FILENO);
        std::vector<char> control(CMSG_SPACE(numbers.size() * sizeof(int)));
        iovec part{const_cast<char*>("\0"), 1};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
        *CMSG_FIRSTHDR(&header) = {CMSG_LEN(numbers.size() * sizeof(int)), SOL_SOCKET, SCM_RIGHTS};
        std::memcpy(CMSG_DATA(CMSG_FIRSTHDR(&header)), numbers.data(), numbers.size() * sizeof(int));
        ASSERT_EQ(::sendmsg(owner.socket(), &header, 0), 1);
        EXPECT_EQ(last_word(owner), "too many descriptors came with a frame");
    }
    while (open_descriptors() > before) std::this_thread::sleep_for(1ms);
}

TEST_F(listening, a_silent_client_is_sent_away_and_an_ending_owner_says_so) {
    listen(20ms);
    auto silent = connect();
    EXPECT_EQ(last_word(silent), "the command did not come in time");
    listen();
    auto late = connect();
    listener_->stop_taking();
    EXPECT_EQ(last_word(late), "ending: it is ending");
    auto last = connect();
    listener_.reset();
    EXPECT_EQ(last_word(last), "ending: it is ending");
}

TEST_F(listening, another_user_is_not_served) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs a second user";
    listen();
    fs::permissions(folder_, fs::perms(0755));
    fs::permissions(path("ostrevan"), fs::perms(0755));
    fs::permissions(place_->path(), fs::perms(0666));
    const auto folder = system::descriptor(::open(path("ostrevan").c_str(), O_PATH | O_CLOEXEC));
    const auto child = ::fork();
    if (child == 0) {
        if (::setuid(65534) != 0) ::_exit(2);
        sockaddr_un address{AF_UNIX, {}};
        std::snprintf(address.sun_path, sizeof address.sun_path, "%s", place_->path().c_str());
        channel owner(system::descriptor(::socket(AF_UNIX, SOCK_STREAM, 0)));
        if (::connect(owner.socket(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) ::_exit(3);
        ask(owner, "1");
        ::_exit(last_word(owner) == "(closed)" ? 0 : 4);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace ostrevan::remote
