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

/// The words after the name of the program, with the default options of the configuration file. Throws `system::user_error`
/// for a mistake in what the file says of this command.
std::vector<std::string> with_configuration(const std::vector<std::string>& words);

/// The words after the name of the program.
std::variant<arguments, nothing_to_run> parse_arguments(const std::vector<std::string>& words);

}  // namespace ostrevan::terminal
