#include "player/terminal/command_words.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace ostrevan::terminal {
namespace {

const CLI::App* command_named(const CLI::App& app, const std::string& name) {
    const auto commands = commands_shown(app);
    const auto found = std::ranges::find(commands, name, [](const CLI::App* each) { return each->get_name(); });
    return found == commands.end() ? nullptr : *found;
}

}  // namespace

const CLI::Option* command_words::option_named(const std::string& name) const {
    for (const auto* app : commands_)
        if (const auto* const option = app->get_option_no_throw(name)) return option;
    return nullptr;
}

void command_words::add(const std::string& word) {
    if (without_value_ != nullptr) {
        without_value_ = nullptr;
    } else if (word == "--" && !only_operands_) {
        only_operands_ = true;
    } else if (is_option(word)) {
        const auto equals = word.find('=');
        const auto* const option = option_named(word.substr(0, equals));
        if (option == nullptr) return;
        options_.push_back(option);
        if (equals == std::string::npos && option->get_items_expected_min() > 0) without_value_ = option;
    } else if (const auto* const command = command_named(*commands_.back(), word); command != nullptr && operands_ == 0) {
        commands_.push_back(command);
    } else {
        ++operands_;
    }
}

const CLI::Option* command_words::next_operand() const {
    const auto operands = operands_of(*commands_.back());
    if (operands_ < operands.size()) return operands[operands_];
    const bool goes_on = !operands.empty() && operands.back()->get_items_expected_max() > 1;
    return goes_on ? operands.back() : nullptr;
}

std::vector<const CLI::App*> commands_shown(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* each) { return !each->get_group().empty(); });
}

std::vector<const CLI::Option*> options_shown(const CLI::App& app) {
    return app.get_options([](const CLI::Option* each) { return each->nonpositional() && !each->get_group().empty(); });
}

std::vector<const CLI::Option*> operands_of(const CLI::App& app) {
    return app.get_options([](const CLI::Option* each) { return each->get_positional(); });
}

}  // namespace ostrevan::terminal
