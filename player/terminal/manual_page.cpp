#include "player/terminal/manual_page.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <vector>

#include "player/terminal/command_words.h"
#include "player/terminal/completion.h"

namespace ostrevan::terminal {
namespace {

/// A dot or an apostrophe at the beginning of a line would be a request, and a plain hyphen would become a dash.
std::string escaped(const std::string& text) {
    std::string out;
    for (const char each : text) {
        if ((each == '.' || each == '\'') && (out.empty() || out.back() == '\n')) out += "\\&";
        if (each == '\\') out += "\\e";
        else if (each == '-') out += "\\-";
        else out += each;
    }
    return out;
}

std::string bold(const std::string& text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + escaped(text) + "\\fR"; }

std::string upper(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char each) { return each >= 'a' && each <= 'z' ? static_cast<char>(each - 32) : each; });
    return text;
}

/// "ostrevan playlist show", or with dashes between the words, as pages are named.
std::string name_of(const CLI::App& app, char between) {
    const auto* const parent = app.get_parent();
    return parent == nullptr ? app.get_name() : name_of(*parent, between) + between + app.get_name();
}

std::string synopsis(const CLI::App& app) {
    std::string text = bold(name_of(app, ' '));
    if (!options_shown(app).empty()) text += " [" + italic("OPTION") + "]...";
    for (const auto* operand : operands_of(app)) {
        const auto name = italic(operand->get_name()) + (operand->get_items_expected_max() > 1 ? "..." : "");
        text += operand->get_required() ? " " + name : " [" + name + "]";
    }
    const auto commands = commands_shown(app);
    if (!commands.empty()) text += " " + italic("COMMAND");
    return text;
}

void write_options(std::ostream& out, const CLI::App& app) {
    for (const auto* operand : operands_of(app))
        if (!operand->get_description().empty())
            out << ".TP\n" << italic(operand->get_name()) << '\n' << escaped(operand->get_description()) << '\n';
    for (const auto* option : options_shown(app)) {
        if (option->check_name("--help") && app.get_parent() != nullptr && app.get_parent()->get_parent() != nullptr)
            continue;
        std::string names;
        for (const auto& name : option->get_snames()) names += (names.empty() ? "" : ", ") + bold("-" + name);
        for (const auto& name : option->get_lnames()) names += (names.empty() ? "" : ", ") + bold("--" + name);
        if (option->get_items_expected_min() > 0) names += " " + italic(value_name(*option));
        out << ".TP\n" << names << '\n' << escaped(option->get_description()) << '\n';
    }
}

void write_commands(std::ostream& out, const CLI::App& app) {
    const bool is_program = app.get_parent() == nullptr;
    for (const auto* command : commands_shown(app)) {
        if (is_program) {
            out << ".TP\n.BR " << escaped(name_of(*command, '-')) << " (1)\n";
            out << escaped(command->get_description()) << '\n';
        } else {
            out << ".TP\n" << synopsis(*command) << '\n' << escaped(command->get_description()) << "\n.RS\n";
            write_options(out, *command);
            out << ".RE\n";
        }
    }
}

/// The examples, and what stands after them in the help. Lines that are set in are commands.
void write_footer(std::ostream& out, const std::string& footer) {
    std::istringstream in(footer);
    bool is_example = false;
    for (std::string line; std::getline(in, line);) {
        if (line == "Examples:") {
            out << ".SH EXAMPLES\n";
            continue;
        }
        const bool is_set_in = line.starts_with("  ");
        if (is_set_in != is_example) out << (is_set_in ? ".EX\n" : ".EE\n.PP\n");
        is_example = is_set_in;
        out << escaped(is_set_in ? line.substr(2) : line) << '\n';
    }
    if (is_example) out << ".EE\n";
}

}  // namespace

std::string manual_page(const CLI::App& of, const std::string& version) {
    std::ostringstream out;
    const bool is_program = of.get_parent() == nullptr;
    const auto description = of.get_description();
    const auto first_line = description.substr(0, description.find('\n'));
    out << ".TH " << escaped(upper(name_of(of, '-'))) << " 1 \"\" \"ostrevan " << escaped(version)
        << "\" \"User Commands\"\n";
    out << ".SH NAME\n" << escaped(name_of(of, '-')) << " \\- " << escaped(first_line) << '\n';
    out << ".SH SYNOPSIS\n" << synopsis(of) << '\n';
    if (description.size() > first_line.size())
        out << ".SH DESCRIPTION\n" << escaped(description.substr(first_line.size() + 1)) << '\n';
    out << ".SH OPTIONS\n";
    write_options(out, of);
    if (!is_program) out << ".PP\nThe options of\n.BR ostrevan (1)\nmay follow as well.\n";
    if (!commands_shown(of).empty()) {
        out << ".SH COMMANDS\n";
        write_commands(out, of);
    }
    write_footer(out, of.get_footer());
    out << ".SH SEE ALSO\n";
    if (!is_program) out << ".BR ostrevan (1),\n";
    out << ".BR ostrevan\\-query (7),\n.BR ostrevan\\-title\\-formatting (7)\n";
    return out.str();
}

}  // namespace ostrevan::terminal
