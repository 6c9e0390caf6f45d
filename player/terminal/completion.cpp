#include "player/terminal/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "player/terminal/command_words.h"

namespace ostrevan::terminal {
namespace {

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

completion value_of(const CLI::Option& option, const std::string& begun, const std::string& before) {
    completion found{{}, value_name(option), begun, before};
    for (const auto& value : fixed_values(option))
        if (begins_with(value, begun)) found.words.push_back({before + value, ""});
    return found;
}

completion options_like(const command_words& line, const std::string& last) {
    if (const auto equals = last.find('='); equals != std::string::npos) {
        const auto* const option = line.option_named(last.substr(0, equals));
        return option == nullptr ? completion{} : value_of(*option, last.substr(equals + 1), last.substr(0, equals + 1));
    }
    completion found;
    for (auto app = line.commands().rbegin(); app != line.commands().rend(); ++app)
        for (const auto* option : options_shown(**app))
            for (const auto& name : option->get_lnames())
                if (begins_with("--" + name, last)) found.words.push_back({"--" + name, option->get_description()});
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

completion complete(const CLI::App& program, const std::vector<std::string>& words) {
    command_words line(program);
    for (std::size_t i = 0; i + 1 < words.size(); ++i) line.add(words[i]);
    const std::string last = words.empty() ? "" : words.back();
    if (line.without_value() != nullptr) return value_of(*line.without_value(), last, "");
    if (line.is_option(last) || last == "-") return options_like(line, last);
    const auto* const operand = line.next_operand();
    auto found = operand == nullptr ? completion{} : value_of(*operand, last, "");
    if (line.operand_count() == 0)
        for (const auto* command : commands_shown(*line.commands().back()))
            if (begins_with(command->get_name(), last))
                found.words.push_back({command->get_name(), command->get_description()});
    return found;
}

}  // namespace ostrevan::terminal
