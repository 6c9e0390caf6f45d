#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "player/app/session.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/terminal.h"

namespace ostrevan::terminal {

/// The context of a command. Results go to standard output; failures are thrown, or reported to the screen one by one.
struct run_context {
    app::session& player;
    terminal& screen;
};

/// A command with its arguments.
struct chosen_command {
    std::function<void(run_context&)> run;
    /// Whether it may open a dialog or ask for a file, so that `--file`, `--check` and `--uncheck` make sense.
    bool may_ask = false;
    /// Loaded alone into a player with an empty profile, instead of the components folder.
    std::optional<std::string> component_to_check = std::nullopt;
};

/// Where a command declares its words, options and help.
class command_declarations {
public:
    command_declarations(CLI::App& app, chosen_command& chosen) : app_(app), chosen_(chosen) {}

    CLI::App& add(const char* name, const char* what, const char* examples = "") { return add(app_, name, what, examples); }
    /// A subcommand, such as `library add`.
    CLI::App& add(CLI::App& parent, const char* name, const char* what, const char* examples = "");

    void run(CLI::App& app, std::function<void(run_context&)> work);
    /// `choose` is called after parsing. It throws CLI::ValidationError for an impossible combination of arguments.
    void choose(CLI::App& app, std::function<chosen_command()> choose);

private:
    CLI::App& app_;
    chosen_command& chosen_;
};

/// Declares the commands of one file. Made as a static object at the end of that file; `position` orders the help.
class command_file {
public:
    using declaration = void (*)(command_declarations&);
    command_file(int position, declaration declare);

    static void declare_all(command_declarations& declarations);
};

}  // namespace ostrevan::terminal
