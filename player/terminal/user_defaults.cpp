#include "player/terminal/user_defaults.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <ranges>
#include <system_error>
#include <utility>

#include "player/system/user_error.h"
#include "player/terminal/command_words.h"

namespace ostrevan::terminal {
namespace {

/// Takes a line apart. A quotation mark inside the other kind is text.
void split(const std::string& text, default_options& line) {
    std::string word;
    bool is_begun = false;
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char each = text[i];
        const bool is_space = each == ' ' || each == '\t' || each == '\r';
        if (quote == 0 && (is_space || each == '#') && !(each == '#' && is_begun)) {
            if (is_begun) line.words.push_back(std::exchange(word, {}));
            is_begun = false;
            if (each == '#') return;
            continue;
        }
        is_begun = true;
        if (quote == 0 && (each == '"' || each == '\'')) quote = each;
        else if (each == quote) quote = 0;
        else if (each == '\\' && quote != '\'' && i + 1 < text.size()) word += text[++i];
        else word += each;
    }
    if (quote != 0) refuse_line(line, std::string("a quotation mark ") + quote + " is not closed.");
    if (is_begun) line.words.push_back(word);
}

command_words read(const CLI::App& program, const std::vector<std::string>& words) {
    command_words line(program);
    for (const auto& word : words) line.add(word);
    return line;
}

/// An option of a default, with its value.
struct default_option {
    const CLI::Option* option;
    std::vector<std::string> words;
};

std::vector<default_option> options_of(const CLI::App& program, const default_options& of) {
    std::vector<default_option> found;
    command_words line(program);
    for (const auto& word : of.words) {
        const bool is_value = line.without_value() != nullptr;
        const auto count = line.options().size();
        line.add(word);
        if (line.options().size() > count) found.push_back({line.options().back(), {word}});
        else if (is_value) found.back().words.push_back(word);
    }
    return found;
}

}  // namespace

void refuse_line(const default_options& line, const std::string& mistake) {
    throw system::user_error(line.path + ":" + std::to_string(line.line) + ": " + mistake);
}

std::string line_text(const default_options& line) {
    std::string text;
    for (const auto& word : line.words) {
        if (&word != &line.words.front()) text += ' ';
        const bool is_plain = !word.empty() && word.find_first_of(" \t\r\"'\\#") == std::string::npos;
        if (is_plain) {
            text += word;
            continue;
        }
        text += '"';
        for (const char each : word) text += each == '"' || each == '\\' ? std::string{'\\', each} : std::string{each};
        text += '"';
    }
    return text;
}

std::vector<default_options> read_defaults(const std::string& path) {
    std::vector<default_options> lines;
    if (path.empty()) return lines;
    std::error_code unknown;  // also when the folder is somebody else's
    if (!std::filesystem::exists(path, unknown)) return lines;
    std::ifstream in(path);
    if (!in) throw system::user_error(path + " cannot be read: " + std::generic_category().message(errno) + ".");
    std::string text;
    for (std::size_t number = 1; std::getline(in, text); ++number) {
        default_options line{path, number, {}};
        split(text, line);
        if (!line.words.empty()) lines.push_back(std::move(line));
    }
    if (in.bad()) throw system::user_error(path + " cannot be read to its end.");
    return lines;
}

void check_options_only(const CLI::App& program, const default_options& line) {
    command_words words(program);
    for (const auto& word : line.words) {
        const bool is_value = words.without_value() != nullptr;
        if (!is_value && words.is_option(word) && words.option_named(word.substr(0, word.find('='))) == nullptr)
            refuse_line(line, "there is no option " + word + " here.");
        words.add(word);
    }
    if (words.without_value() != nullptr) refuse_line(line, line.words.back() + " needs a value.");
    if (words.operand_count() != 0 || line.words.front() == "--")
        refuse_line(line, "a command is followed by its options only, as in 'list --sort Title'.");
    if (words.options().empty()) refuse_line(line, "options are missing after the command.");
}

std::vector<default_options> defaults_for(const CLI::App& program, const std::vector<std::string>& words,
                                          const std::vector<default_options>& defaults) {
    const auto given = read(program, words);
    std::vector<default_options> found;
    for (const auto& line : defaults) {
        const auto wanted = read(program, line.words);
        const auto& commands = wanted.commands();
        if (std::ranges::mismatch(commands, given.commands()).in1 == commands.end()) found.push_back(line);
    }
    return found;
}

std::vector<std::string> with_defaults(const CLI::App& program, const std::vector<std::string>& words,
                                       const std::vector<default_options>& defaults) {
    const auto given = read(program, words);
    const auto is_given = [&](const CLI::Option* option) {
        return std::ranges::find(given.options(), option) != given.options().end();
    };
    const auto is_overruled = [&](const CLI::Option* option) {
        return is_given(option) || std::ranges::any_of(option->get_excludes(), is_given) ||
               std::ranges::any_of(option->get_needs(), is_given);
    };
    std::vector<std::string> added;
    for (const auto& line : defaults)
        for (const auto& [option, own] : options_of(program, line))
            if (!is_overruled(option)) added.insert(added.end(), own.begin(), own.end());
    // After the command, since a later "--" would make them operands.
    command_words line(program);
    auto at = words.begin();
    for (auto word = words.begin(); word != words.end(); ++word) {
        const auto count = line.commands().size();
        line.add(*word);
        if (line.commands().size() > count) at = word + 1;
    }
    std::vector<std::string> all(words.begin(), at);
    all.insert(all.end(), added.begin(), added.end());
    all.insert(all.end(), at, words.end());
    return all;
}

}  // namespace ostrevan::terminal
