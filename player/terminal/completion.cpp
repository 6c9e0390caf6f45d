#include "player/terminal/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace ostrevan::terminal {
namespace {

bool takes_value(const CLI::Option& option) { return option.get_items_expected_min() > 0; }

/// The words between braces that the type of a checked value ends with: "TEXT:{off,track}".
std::vector<std::string> fixed_values(const CLI::Option& option) {
    const auto type = option.get_type_name();
    const auto open = type.find('{');
    const auto close = type.find('}', open);
    std::vector<std::string> values;
    if (open == std::string::npos || close == std::string::npos) return values;
    std::istringstream in(type.substr(open + 1, close - open - 1));
    for (std::string value; std::getline(in, value, ',');) values.push_back(value);
    return values;
}

/// A command line, as far as its words are complete.
class words_so_far {
public:
    explicit words_so_far(const CLI::App& program) : commands_{&program} {}

    void add(const std::string& word);
    [[nodiscard]] completion of(const std::string& last) const;

private:
    [[nodiscard]] bool is_option(const std::string& word) const {
        return !only_operands_ && word.size() > 1 && word.front() == '-';
    }
    [[nodiscard]] const CLI::Option* option_named(const std::string& name) const;
    [[nodiscard]] const CLI::Option* next_operand() const;
    [[nodiscard]] completion options_like(const std::string& last) const;

    std::vector<const CLI::App*> commands_;
    const CLI::Option* without_value_ = nullptr;
    std::size_t operands_ = 0;
    bool only_operands_ = false;
};

const CLI::App* command_named(const CLI::App& app, const std::string& name) {
    const auto commands = commands_shown(app);
    const auto found = std::ranges::find(commands, name, [](const CLI::App* each) { return each->get_name(); });
    return found == commands.end() ? nullptr : *found;
}

const CLI::Option* words_so_far::option_named(const std::string& name) const {
    for (const auto* app : commands_)
        if (const auto* const option = app->get_option_no_throw(name)) return option;
    return nullptr;
}

void words_so_far::add(const std::string& word) {
    if (without_value_ != nullptr) {
        without_value_ = nullptr;
    } else if (word == "--" && !only_operands_) {
        only_operands_ = true;
    } else if (is_option(word)) {
        const auto* const option = option_named(word);
        if (option != nullptr && takes_value(*option)) without_value_ = option;
    } else if (const auto* const command = command_named(*commands_.back(), word); command != nullptr && operands_ == 0) {
        commands_.push_back(command);
    } else {
        ++operands_;
    }
}

const CLI::Option* words_so_far::next_operand() const {
    const auto operands = operands_of(*commands_.back());
    if (operands_ < operands.size()) return operands[operands_];
    const bool goes_on = !operands.empty() && operands.back()->get_items_expected_max() > 1;
    return goes_on ? operands.back() : nullptr;
}

completion value_of(const CLI::Option& option, const std::string& begun, const std::string& before) {
    completion found{{}, value_name(option), begun, before};
    for (const auto& value : fixed_values(option))
        if (begins_with(value, begun)) found.words.push_back({before + value, ""});
    return found;
}

completion words_so_far::options_like(const std::string& last) const {
    if (const auto equals = last.find('='); equals != std::string::npos) {
        const auto* const option = option_named(last.substr(0, equals));
        return option == nullptr ? completion{} : value_of(*option, last.substr(equals + 1), last.substr(0, equals + 1));
    }
    completion found;
    for (auto app = commands_.rbegin(); app != commands_.rend(); ++app)
        for (const auto* option : options_shown(**app))
            for (const auto& name : option->get_lnames())
                if (begins_with("--" + name, last)) found.words.push_back({"--" + name, option->get_description()});
    return found;
}

completion words_so_far::of(const std::string& last) const {
    if (without_value_ != nullptr) return value_of(*without_value_, last, "");
    if (is_option(last) || (last == "-" && !only_operands_)) return options_like(last);
    const auto* const operand = next_operand();
    auto found = operand == nullptr ? completion{} : value_of(*operand, last, "");
    if (operands_ == 0)
        for (const auto* command : commands_shown(*commands_.back()))
            if (begins_with(command->get_name(), last))
                found.words.push_back({command->get_name(), command->get_description()});
    return found;
}

char lower(char each) { return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each; }

}  // namespace

bool begins_with(const std::string& word, const std::string& begun) {
    return word.size() >= begun.size() &&
           std::ranges::equal(word.substr(0, begun.size()), begun, [](char a, char b) { return a == b || lower(a) == b; });
}

std::string value_name(const CLI::Option& option) {
    const auto type = option.get_type_name();
    const auto name = type.substr(0, type.find(':'));
    return name.empty() || (option.get_positional() && name == "TEXT") ? option.get_name() : name;
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

completion complete(const CLI::App& program, const std::vector<std::string>& words) {
    words_so_far line(program);
    for (std::size_t i = 0; i + 1 < words.size(); ++i) line.add(words[i]);
    return line.of(words.empty() ? "" : words.back());
}

}  // namespace ostrevan::terminal
