#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace ostrevan::terminal {

/// A line of the configuration file: a command, or none for all of them, and options as on the command line.
struct default_options {
    std::string path;
    std::size_t line;
    std::vector<std::string> words;
};

/// Lines in quotes and with backslashes are taken apart as shells do; after a # comes a comment. Empty when there is no such
/// file. Throws `system::user_error` that names the file and the line.
std::vector<default_options> read_defaults(const std::string& path);

/// Throws `system::user_error` with file, line and mistake.
[[noreturn]] void refuse_line(const default_options& line, const std::string& mistake);

/// The line as it could be written in the file.
std::string line_text(const default_options& line);

/// Throws `system::user_error`, naming file and line, unless only options of the command follow it.
void check_options_only(const CLI::App& program, const default_options& line);

/// Those of the lines that are for the command of these words.
std::vector<default_options> defaults_for(const CLI::App& program, const std::vector<std::string>& words,
                                          const std::vector<default_options>& defaults);

/// Puts the default options of lines for this command into its words, but for those that the words name themselves, exclude,
/// or give what they need.
std::vector<std::string> with_defaults(const CLI::App& program, const std::vector<std::string>& words,
                                       const std::vector<default_options>& defaults);

}  // namespace ostrevan::terminal
