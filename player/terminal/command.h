#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "player/app/session.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/ownership.h"
#include "player/terminal/terminal.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace ostrevan::terminal {

/// The context of a command, which runs on the own thread of its job. Results go to `out`; failures are thrown, or reported
/// to the screen one by one.
struct run_context {
    app::session& player;
    terminal& screen;
    std::ostream& out;
    core::job& job;
    ownership& owner;
    /// False for the command of another process.
    bool is_own;

    /// Runs work on the main thread, where components and the library are used, and returns its value. Keep it short:
    /// everything else waits meanwhile.
    template <typename Work>
    auto on_main(Work work) const {
        return player.loop.call(std::move(work));
    }
};

/// A command with its arguments.
struct chosen_command {
    std::function<void(run_context&)> run;
    /// Whether it may open a dialog or ask for a file, so that `--file`, `--check` and `--uncheck` make sense.
    bool may_ask = false;
    /// Loaded alone into a player with an empty profile, instead of the components folder.
    std::optional<std::string> component_to_check = std::nullopt;
    /// Whether it goes on for as long as the user likes. A process that is about to end does not begin it for another one.
    bool is_lasting = false;
    /// Printed without a player, instead of anything else.
    std::optional<std::string> text = std::nullopt;
    /// The command line, as the journal of changes names it.
    std::string words{};
};

/// An operand, an option or a flag of a command.
class declared_option {
public:
    explicit declared_option(CLI::Option& option) : option_(&option) {}

    declared_option& required();
    /// Another option or operand of the same command, by name.
    declared_option& needs(const char* other);
    declared_option& excludes(const char* other);
    /// Given again for each further value, so that the words after one value are operands.
    declared_option& one_value_each();
    declared_option& one_of(const std::vector<std::string>& words);
    declared_option& between(long least, long most);
    declared_option& existing_file();
    /// The value's name in the help.
    declared_option& called(const char* value);
    declared_option& show_default();

private:
    CLI::Option* option_;
};

/// A command or the whole program: its words, options and help. Refers to the parser's.
class declared_command {
public:
    declared_command(CLI::App& app, chosen_command& chosen) : app_(&app), chosen_(&chosen) {}

    declared_command add(const char* name, const char* what, const char* examples = "");
    /// Left out of the help: for other programs.
    void hide();
    /// One of the commands added has to be named.
    void require_command();

    using value = std::variant<std::string*, std::optional<std::string>*, std::vector<std::string>*,
                               std::vector<std::size_t>*, std::size_t*, std::optional<double>*>;
    /// An option when the name begins with a dash, otherwise an operand.
    declared_option add_option(const char* name, value into, const char* what = "");
    declared_option add_flag(const char* name, bool& into, const char* what);
    /// `--name{value}` is a flag that may be given another value, as `--name=other`.
    declared_option add_flag(const char* name, std::optional<std::string>& into, const char* what);

    /// When a subcommand is named, that one runs instead.
    void run(std::function<void(run_context&)> work);
    /// `choose` is called after parsing. It may refuse an impossible combination of arguments.
    void choose(std::function<chosen_command()> choose);

private:
    CLI::App* app_;
    chosen_command* chosen_;
};

/// Throws the mistake that the arguments make together; `words` are those that it is about.
[[noreturn]] void refuse_arguments(const char* words, const std::string& mistake);

/// Declares the commands of one file. Made as a static object at the end of that file; `position` orders the help.
class command_file {
public:
    using declaration = void (*)(declared_command& program);
    command_file(int position, declaration declare);

    static void declare_all(declared_command& program);
};

}  // namespace ostrevan::terminal
