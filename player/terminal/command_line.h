#pragma once

#include <string>
#include <variant>
#include <vector>

#include "player/terminal/command.h"
#include "player/terminal/prepared_answers.h"

namespace ostrevan::terminal {

struct arguments {
    std::string profile;
    std::string components;
    std::string more_components;
    bool quiet = false;
    prepared_answers answers;
    chosen_command chosen;
};

/// Output instead of a command: help, the version, or the mistake.
struct nothing_to_run {
    int status;
    std::string text;
};

/// The words after the name of the program.
std::variant<arguments, nothing_to_run> parse_arguments(const std::vector<std::string>& words);

}  // namespace ostrevan::terminal
