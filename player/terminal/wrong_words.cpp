#include "player/terminal/wrong_words.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <vector>

#include "player/view/nearest.h"

namespace ostrevan::terminal {
namespace {

/// The program and the commands, as far as understood.
std::vector<const CLI::App*> chosen_commands(const CLI::App& app) {
    std::vector<const CLI::App*> chosen{&app};
    while (!chosen.back()->get_subcommands().empty()) chosen.push_back(chosen.back()->get_subcommands().front());
    return chosen;
}

std::string name_of(const std::vector<const CLI::App*>& chosen) {
    std::string name;
    for (const auto* app : chosen) name += (name.empty() ? "" : " ") + app->get_name();
    return name;
}

std::string see_help(const std::vector<const CLI::App*>& chosen) { return " See '" + name_of(chosen) + " --help'."; }

std::vector<std::string> options_of(const std::vector<const CLI::App*>& chosen) {
    std::vector<std::string> names;
    for (const auto* app : chosen)
        for (const auto* option : app->get_options())
            for (const auto& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

std::vector<const CLI::App*> subcommands_of(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); });
}

std::vector<std::string> commands_of(const CLI::App& app) {
    std::vector<std::string> names;
    for (const auto* command : subcommands_of(app)) names.push_back(command->get_name());
    return names;
}

/// The commands and their subcommands, as `library rescan`.
std::vector<std::string> near_commands_of(const CLI::App& app) {
    auto names = commands_of(app);
    for (const auto* command : subcommands_of(app))
        for (const auto& name : commands_of(*command)) names.push_back(command->get_name() + " " + name);
    return names;
}

std::string proposal_for(const std::string& option, const std::vector<std::string>& options) {
    std::error_code ignored;
    if (std::filesystem::exists(option, ignored)) return " The file of this name is written \"./" + option + "\".";
    return view::did_you_mean(option.substr(0, option.find('=')), options);
}

}  // namespace

std::string describe_unknown_words(const CLI::App& app) {
    const auto unknown = app.remaining(true);
    if (unknown.empty()) return {};
    const auto chosen = chosen_commands(app);
    const auto& word = unknown.front();
    const auto quoted = "\"" + word + "\"";
    if (word.size() > 1 && word.front() == '-')
        return "'" + name_of(chosen) + "' has no option " + quoted + "." + proposal_for(word, options_of(chosen)) +
               see_help(chosen);
    const auto commands = commands_of(*chosen.back());
    if (commands.empty()) return quoted + " is a word too many for '" + name_of(chosen) + "'." + see_help(chosen);
    return "'" + name_of(chosen) + "' has no command " + quoted + "." +
           view::did_you_mean(word, near_commands_of(*chosen.back())) + see_help(chosen);
}

std::string describe_mistake(const CLI::App& app, const std::string& mistake) {
    const auto chosen = chosen_commands(app);
    const auto commands = commands_of(*chosen.back());
    if (commands.empty()) return mistake + "." + see_help(chosen);
    std::string text = "'" + name_of(chosen) + "' needs a command:";
    for (const auto& name : commands) text += " " + name;
    return text + "." + see_help(chosen);
}

}  // namespace ostrevan::terminal
