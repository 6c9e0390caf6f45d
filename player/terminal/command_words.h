#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace ostrevan::terminal {

/// The words of a command line, as far as they are complete, held against what is declared. Never throws: words that mean
/// nothing count as operands.
class command_words {
public:
    explicit command_words(const CLI::App& program) : commands_{&program} {}

    void add(const std::string& word);

    /// The program, and the commands named so far.
    [[nodiscard]] const std::vector<const CLI::App*>& commands() const noexcept { return commands_; }
    [[nodiscard]] const std::vector<const CLI::Option*>& options() const noexcept { return options_; }
    [[nodiscard]] std::size_t operand_count() const noexcept { return operands_; }
    /// The option whose value is the next word; null when there is none.
    [[nodiscard]] const CLI::Option* without_value() const noexcept { return without_value_; }
    [[nodiscard]] bool is_option(const std::string& word) const {
        return !only_operands_ && word.size() > 1 && word.front() == '-';
    }
    /// Of the commands named so far; null when none has it.
    [[nodiscard]] const CLI::Option* option_named(const std::string& name) const;
    [[nodiscard]] const CLI::Option* next_operand() const;

private:
    std::vector<const CLI::App*> commands_;
    std::vector<const CLI::Option*> options_;
    const CLI::Option* without_value_ = nullptr;
    std::size_t operands_ = 0;
    bool only_operands_ = false;
};

/// Those that the help shows, and the operands.
std::vector<const CLI::App*> commands_shown(const CLI::App& app);
std::vector<const CLI::Option*> options_shown(const CLI::App& app);
std::vector<const CLI::Option*> operands_of(const CLI::App& app);

}  // namespace ostrevan::terminal
