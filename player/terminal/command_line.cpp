#include "player/terminal/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "player/system/default_folders.h"
#include "player/system/user_error.h"
#include "player/terminal/command_words.h"
#include "player/terminal/completion.h"
#include "player/terminal/completion_values.h"
#include "player/terminal/manual_page.h"
#include "player/terminal/user_defaults.h"
#include "player/terminal/wrong_words.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* description =
    "A small music player that keeps playback statistics.\n"
    "TRACK is a path, path|subsong or a folder; --where QUERY is every track of the library that matches.";

constexpr const char* main_examples =
    "Examples:\n"
    "  ostrevan library add ~/Music\n"
    "  ostrevan play ~/Music/song.flac\n"
    "  ostrevan list --column Title --column \"Play Count\"\n"
    "  ostrevan list low water\n"
    "  ostrevan list '%last_played% DURING LAST 1 WEEK SORT DESCENDING BY %last_played% LIMIT 20'\n"
    "  ostrevan rate 4 ~/Music/song.flac\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage, 3 declined, 130 interrupted.";

/// In reverse order, as the parser expects.
std::vector<std::string> reversed(std::vector<std::string> words) {
    std::error_code error;
    for (auto& word : words)  // the parser reads [a,b] as a list; file names can look like that
        if (word.starts_with('[') && std::filesystem::exists(word, error)) word.insert(0, "./");
    std::ranges::reverse(words);
    return words;
}

constexpr const char* config_examples =
    "Shows the lines of the file, or the first mistake. Each line is a command with the options that it then has by itself; "
    "a\n"
    "line of options alone is for all commands. Options given on the command line go before.\n"
    "Examples of lines:\n"
    "  list --column Artist --column Title --column 'Play Count' --sort 'Last Played' --descending\n"
    "  play --replay-gain album --volume 80\n"
    "  watch --except firefox\n"
    "  --quiet";

std::string configuration_text();

/// The command line and the variables that CLI11 fills.
class command_line {
public:
    command_line();
    std::variant<arguments, nothing_to_run> parse(const std::vector<std::string>& words);
    [[nodiscard]] const CLI::App& app() const noexcept { return app_; }
    /// Throws `system::user_error` for a mistake in a line of the configuration file.
    void check(const default_options& line);

private:
    void declare_for_programs();
    [[nodiscard]] std::string manual_of(const std::vector<std::string>& command) const;
    void check_answers() const;

    CLI::App app_{description, "ostrevan"};
    arguments result_;
    declared_command program_{app_, result_.chosen};
    bool yes_ = false;
    bool no_ = false;
};

command_line::command_line() {
    result_.profile = system::default_profile();
    result_.components = system::default_components();
    app_.footer(main_examples);
    app_.set_version_flag("--version", OSTREVAN_VERSION);
    program_.add_option("--profile", &result_.profile, "Folder of all data").called("DIR").show_default();
    program_.add_option("--components", &result_.components, "Folder with the components").called("DIR");
    program_.add_flag("--quiet", result_.quiet, "No progress and no notes, only results and errors");
    program_.add_flag("--yes", yes_, "Answer every question with yes, every dialog with OK");
    program_.add_flag("--no", no_, "Answer every question with no, every dialog with Cancel").excludes("--yes");
    auto& answers = result_.answers;
    program_.add_option("--file", &answers.file, "The file, when a command asks for one").called("PATH");
    program_.add_option("--check", &answers.check, "A control to check in a dialog, may be repeated")
        .called("LABEL")
        .one_value_each();
    program_.add_option("--uncheck", &answers.uncheck, "A control to uncheck, may be repeated")
        .called("LABEL")
        .one_value_each();
    program_.require_command();
    command_file::declare_all(program_);
    declare_for_programs();
}

/// Commands about the command line itself, most of them for shells and for the build of a package.
void command_line::declare_for_programs() {
    const auto words = std::make_shared<std::vector<std::string>>();
    auto completing = program_.add("complete", "How the last of these words can go on, for shells");
    completing.hide();
    completing.add_option("WORDS", words.get());
    completing.choose([this, words] {
        const auto wanted = complete(app_, *words);
        for (std::size_t i = 0; i + 2 < words->size(); ++i)
            if ((*words)[i] == "--profile") result_.profile = (*words)[i + 1];
        if (!has_values(wanted)) return chosen_command{.run = {}, .text = completion_text(wanted)};
        return chosen_command{[wanted](run_context& context) { print_completion(context, wanted); }};
    });
    auto config = program_.add("config", "The configuration file: default options of commands", config_examples);
    config.choose([] { return chosen_command{.run = {}, .text = configuration_text()}; });
    auto manual = program_.add("manual", "The manual page of the program or of a command, for man");
    manual.hide();
    manual.add_option("COMMAND", words.get());
    manual.choose([this, words] { return chosen_command{.run = {}, .text = manual_of(*words)}; });
}

std::string command_line::manual_of(const std::vector<std::string>& command) const {
    if (command.empty()) return manual_page(app_, OSTREVAN_VERSION);
    for (const auto* each : commands_shown(app_))
        if (each->get_name() == command.front()) return manual_page(*each, OSTREVAN_VERSION);
    refuse_arguments("COMMAND", "there is no command " + command.front());
}

void command_line::check(const default_options& line) {
    check_options_only(app_, line);
    try {
        app_.parse(reversed(line.words));
    } catch (const CLI::RequiredError&) {
        return;  // only the operands are missing
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) refuse_line(line, "this option has no default.");
        refuse_line(line, std::string(error.what()) + ".");
    }
}

/// Refuses answers for a command without dialogs.
void command_line::check_answers() const {
    const auto& answers = result_.answers;
    if (answers.fill_dialogs() && !result_.chosen.may_ask)
        refuse_arguments("--file, --check, --uncheck", "only commands of 'menu' and 'context' ask for these");
    if (answers.file && answers.file->empty()) refuse_arguments("--file", "name a file");
}

std::variant<arguments, nothing_to_run> command_line::parse(const std::vector<std::string>& words) {
    try {
        app_.parse(reversed(words));
        check_answers();
    } catch (const CLI::ParseError& error) {
        if (const auto wrong = describe_unknown_words(app_); !wrong.empty()) return nothing_to_run{exit_usage, wrong};
        if (dynamic_cast<const CLI::CallForVersion*>(&error) != nullptr) return nothing_to_run{exit_done, OSTREVAN_VERSION};
        if (error.get_exit_code() == 0) return nothing_to_run{exit_done, app_.help()};
        return nothing_to_run{exit_usage, describe_mistake(app_, error.what())};
    } catch (const system::user_error& error) {
        return nothing_to_run{exit_usage, error.what()};
    }
    if (result_.chosen.text) return nothing_to_run{exit_done, *result_.chosen.text};
    if (result_.components == system::default_components()) result_.more_components = system::own_components();
    if (yes_ || no_) result_.answers.yes = yes_;
    const auto name = app_.get_subcommands().front()->get_name();
    for (auto each = std::ranges::find(words, name); each != words.end(); ++each)
        result_.chosen.words += (result_.chosen.words.empty() ? "" : " ") + *each;
    return result_;
}

std::string configuration_text() {
    const auto path = system::configuration_file();
    const auto lines = read_defaults(path);
    if (lines.empty()) return "There is nothing in " + path + " yet. See 'ostrevan config --help'.";
    std::string text = "# " + path;
    for (const auto& line : lines) {
        command_line().check(line);
        text += "\n" + line_text(line);
    }
    return text;
}

}  // namespace

std::vector<std::string> with_configuration(const std::vector<std::string>& words) {
    const auto defaults = read_defaults(system::configuration_file());
    if (defaults.empty()) return words;
    const command_line line;
    const auto wanted = defaults_for(line.app(), words, defaults);
    for (const auto& each : wanted) command_line().check(each);
    return with_defaults(line.app(), words, wanted);
}

std::variant<arguments, nothing_to_run> parse_arguments(const std::vector<std::string>& words) {
    return command_line().parse(words);
}

}  // namespace ostrevan::terminal
