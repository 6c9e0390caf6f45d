#pragma once

#include <string>

namespace CLI {
class App;
}  // namespace CLI

namespace ostrevan::terminal {

/// Describes the first word that is not a command or option, with a suggestion. Empty when there is none. `app` has parsed
/// a command line.
std::string describe_unknown_words(const CLI::App& app);

/// Describes another mistake, such as a missing value, and refers to the help.
std::string describe_mistake(const CLI::App& app, const std::string& mistake);

}  // namespace ostrevan::terminal
