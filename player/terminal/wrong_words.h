#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace ostrevan::terminal {

/// Names the first word that is no command or option of the program, and what was probably meant. Empty when there is none.
/// `app` has read a command line.
std::string describe_unknown_words(const CLI::App& app);

/// A mistake of another kind, such as a missing value, with the way to the help.
std::string describe_mistake(const CLI::App& app, const std::string& mistake);

}  // namespace ostrevan::terminal
