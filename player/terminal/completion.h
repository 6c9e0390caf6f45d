#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace ostrevan::terminal {

struct proposal {
    std::string word;
    std::string meaning;
};

/// What a command line can go on with.
struct completion {
    /// Commands, options and fixed values that begin with what is there.
    std::vector<proposal> words{};
    /// The name of the value wanted, as in the help: "COLUMN". Empty where none is.
    std::string value{};
    /// What is there of the value.
    std::string begun{};
    /// Stands before the value within the same word: "--column=".
    std::string before{};
};

/// Of the last word, which may be empty; the others are complete.
completion complete(const CLI::App& program, const std::vector<std::string>& words);

/// Whether to the user, who has typed no capitals, the word begins like that.
bool begins_with(const std::string& word, const std::string& begun);

/// The name of the value of an option or operand, without the words it is checked against: "COLUMN".
std::string value_name(const CLI::Option& option);

}  // namespace ostrevan::terminal
