#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <thread>

#include "player/core/job_thread.h"
#include "player/core/profile_folder.h"
#include "player/remote/client.h"
#include "player/system/interrupt.h"
#include "player/system/standard_streams.h"
#include "player/system/temporary_folder.h"
#include "player/system/user_error.h"
#include "player/terminal/command_line.h"
#include "player/terminal/profile_owner.h"
#include "player/terminal/running.h"
#include "player/terminal/terminal_front_end.h"

namespace ostrevan::terminal {
namespace {

/// A process that is started or ended at the same moment gets this long.
constexpr auto patience = std::chrono::milliseconds(2000);

/// Owns the profile until the command is done, and those of other processes that came meanwhile.
int run_as_owner(const app::session_options& options, core::profile_lock lock, const chosen_command& chosen,
                 terminal& screen, const core::job_ptr& job) {
    const core::job_thread thread(job);
    terminal_front_end ui(job, screen);
    const core::job::scope scope(job);
    profile_owner owner(options, std::move(lock), ui, chosen.is_lasting);
    const core::job::scope nobody(nullptr);
    int status = exit_failed;
    job->run_on_own_thread([&, busy = std::make_shared<core::main_loop::activity>(owner.player.loop)] {
        run_context context{owner.player, screen, screen.out(), *job, owner.state, true};
        status = run_to_end(chosen, context);
        owner.finish(context);
    });
    owner.player.run_until_idle();
    return status;
}

/// Checks a component in a player with an empty profile.
int run_check(const arguments& wanted, terminal& screen, const core::job_ptr& job) {
    const auto parent = std::filesystem::temp_directory_path().string();
    const auto profile = system::temporary_folder::in(parent);
    if (!profile) throw std::runtime_error("No folder can be made in " + parent + ": name another one with TMPDIR.");
    return run_as_owner({profile->path(), *wanted.chosen.component_to_check, wanted.quiet},
                        *core::profile_lock::take(profile->path()), wanted.chosen, screen, job);
}

remote::command as_command(std::vector<std::string> words) {
    auto side = own_side();
    return {.words = std::move(words), .home = std::move(side.home), .terminal_kind = std::move(side.terminal_kind)};
}

/// Here when no other process owns the profile, else there.
int run(const arguments& wanted, const std::vector<std::string>& words, terminal& screen, const core::job_ptr& job) {
    if (wanted.chosen.component_to_check) return run_check(wanted, screen, job);
    const auto& profile = core::prepare_profile(wanted.profile);
    std::string obstacle;
    for (const auto begin = std::chrono::steady_clock::now(); std::chrono::steady_clock::now() - begin < patience;) {
        if (auto lock = core::profile_lock::take(profile))
            return run_as_owner({profile, wanted.components, wanted.quiet, wanted.more_components}, std::move(*lock),
                                wanted.chosen, screen, job);
        const auto place = remote::socket_place::of(profile);
        auto owner = system::descriptor();
        try {
            if (place) owner = place->connect();
        } catch (const std::exception& error) {
            obstacle = std::string(" ") + error.what();
        }
        if (owner)
            if (const auto status = remote::run_at_owner(std::move(owner), as_command(words))) return *status;
        if (system::interrupted()) return exit_interrupted;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    throw std::runtime_error("The profile " + profile + " is in use by process " + core::holder_of(profile) +
                             ", which takes no commands. Wait until it ends, or choose another profile with --profile." +
                             obstacle);
}

/// The words with the defaults of the configuration file, and what they mean. Help and the like do without the file.
std::pair<std::vector<std::string>, std::variant<arguments, nothing_to_run>> parse_configured(
    std::vector<std::string> words) {
    auto parsed = parse_arguments(words);
    const auto* const nothing = std::get_if<nothing_to_run>(&parsed);
    if (nothing != nullptr && nothing->status == exit_done) return {std::move(words), std::move(parsed)};
    try {
        words = with_configuration(words);
        parsed = parse_arguments(words);
    } catch (const system::user_error& error) {
        parsed = nothing_to_run{exit_usage, error.what()};
    }
    return {std::move(words), std::move(parsed)};
}

}  // namespace
}  // namespace ostrevan::terminal

int main(int count, char** values) {
    using namespace ostrevan;
    using namespace ostrevan::terminal;
    system::open_missing_streams();
    system::handle_interrupts();
    const auto configured = parse_configured({values + 1, values + count});
    const auto& words = configured.first;
    const auto& parsed = configured.second;
    const auto* const nothing = std::get_if<nothing_to_run>(&parsed);
    const auto wanted = nothing == nullptr ? std::get<arguments>(parsed) : arguments{};
    const auto job = std::make_shared<core::job>(system::interrupted());
    ostrevan::terminal::terminal screen(own_side(), job, wanted.quiet, wanted.answers);
    int status = exit_done;
    if (nothing == nullptr) {
        status = reporting(screen, [&] { return run(wanted, words, screen, job); });
    } else {
        status = nothing->status;
        if (status == exit_done) screen.out() << nothing->text << '\n';
        else screen.error(nothing->text);
    }
    return final_status(status, screen, system::interrupted());
}
