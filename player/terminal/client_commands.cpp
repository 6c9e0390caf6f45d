#include "player/terminal/client_commands.h"

#include <sched.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <thread>
#include <utility>

#include "player/system/default_folders.h"
#include "player/system/interrupt.h"
#include "player/terminal/command_line.h"
#include "player/terminal/running.h"
#include "player/terminal/terminal_front_end.h"

namespace ostrevan::terminal {
namespace {

const remote::refusal ending{.is_ending = true, .reason = "it is ending"};

/// Gives the calling thread, and the threads that it starts, a current folder of their own.
bool enter(const system::descriptor& folder) { return ::unshare(CLONE_FS) == 0 && ::fchdir(folder.get()) == 0; }

std::string absolute(const std::string& path) { return std::filesystem::absolute(path).lexically_normal().string(); }

/// The components are those that the owner has loaded.
void check_components(const arguments& wanted, const ownership& owner) {
    if (wanted.components != system::default_components() && absolute(wanted.components) != owner.components)
        throw std::runtime_error("The profile is in use by process " + std::to_string(::getpid()) +
                                 " with the components of " + owner.components + ". End it first, or omit --components.");
}

}  // namespace

client_commands::client_commands(app::session& player, ownership& owner, const remote::socket_place& place)
    : player_(player), owner_(owner), listener_(place, [this](const std::shared_ptr<remote::call>& of) { begin(of); }) {}

void client_commands::begin(const std::shared_ptr<remote::call>& of) {
    const auto job = std::make_shared<core::job>();
    {
        const std::lock_guard lock(mutex_);
        if (!takes_) return of->refuse(ending);
        under_way_.insert(job);
    }
    of->on_interrupt([job] { job->stop() = true; });
    std::thread([this, of, job, busy = core::main_loop::activity(player_.loop)] {
        const core::job::scope scope(job);
        job->take_over();
        carry_out(*of, job);
        job->leave();
        const std::lock_guard lock(mutex_);
        under_way_.erase(job);
    }).detach();
}

void client_commands::carry_out(remote::call& of, const core::job_ptr& job) {
    const auto files = of.take_files();
    if (!enter(files.folder)) return of.refuse({.reason = "the current folder cannot be used there"});
    const auto parsed = parse_arguments(of.wanted().words);
    const auto* const nothing = std::get_if<nothing_to_run>(&parsed);
    const auto wanted = nothing == nullptr ? std::get<arguments>(parsed) : arguments{};
    if (wanted.chosen.is_lasting && !owner_.takes_lasting()) return of.refuse(ending);
    int status = exit_failed;
    {
        terminal screen({.input = files.input.get(),
                         .output = files.output.get(),
                         .error = files.error.get(),
                         .terminal_kind = of.wanted().terminal_kind,
                         .home = of.wanted().home,
                         .is_in_foreground = [&of](int /*descriptor*/) { return of.is_in_foreground(); }},
                        job, wanted.quiet, wanted.answers);
        player_.add_front_end(job, std::make_shared<terminal_front_end>(job, screen));
        status = reporting(screen, [&] {
            if (nothing != nullptr) throw system::user_error(nothing->text);
            check_components(wanted, owner_);
            run_context context{player_, screen, screen.out(), *job, owner_, false};
            return run_to_end(wanted.chosen, context);
        });
        player_.remove_front_end(job);
        status = final_status(status, screen, job->stop());
    }
    of.finish(status);
}

bool client_commands::are_under_way() {
    const std::lock_guard lock(mutex_);
    if (!under_way_.empty()) return true;
    takes_ = false;
    return false;
}

void client_commands::take_more(bool takes) {
    const std::lock_guard lock(mutex_);
    takes_ = takes;
}

void client_commands::interrupt_all() {
    const std::lock_guard lock(mutex_);
    for (const auto& job : under_way_) job->stop() = true;
}

void client_commands::finish(run_context& own) {
    constexpr auto long_wait = std::chrono::seconds(1);
    constexpr auto look_again = std::chrono::milliseconds(20);
    owner_.is_done = true;
    take_more(false);
    const bool was_interrupted = system::interrupted().exchange(false);
    system::handle_interrupts();
    bool is_told = false;
    for (const auto begin = ownership::clock::now(); are_under_way(); std::this_thread::sleep_for(look_again)) {
        own.job.serve();
        if (system::interrupted()) interrupt_all();
        if (is_told || ownership::clock::now() - begin < long_wait) continue;
        is_told = true;
        take_more(true);
        own.screen.note("Commands of other terminals are still under way. Ctrl-C interrupts them.");
    }
    listener_.stop_taking();
    system::interrupted() = was_interrupted;  // not this command, since then
}

}  // namespace ostrevan::terminal
