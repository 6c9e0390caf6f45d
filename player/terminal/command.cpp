#include "player/terminal/command.h"

#include <CLI/CLI.hpp>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

namespace ostrevan::terminal {
namespace {

/// Made at first use, since the order of construction of static objects in several files is undefined.
std::map<int, command_file::declaration>& files_by_position() {
    static std::map<int, command_file::declaration> files;
    return files;
}

}  // namespace

declared_option& declared_option::required() {
    option_->required();
    return *this;
}

declared_option& declared_option::needs(const char* other) {
    option_->needs(other);
    return *this;
}

declared_option& declared_option::excludes(const char* other) {
    option_->excludes(other);
    return *this;
}

declared_option& declared_option::one_value_each() {
    option_->allow_extra_args(false);
    return *this;
}

declared_option& declared_option::one_of(const std::vector<std::string>& words) {
    option_->check(CLI::IsMember(words));
    return *this;
}

declared_option& declared_option::between(long least, long most) {
    const auto refusal = [least, most](const std::string& text) {
        double number = 0;
        if (CLI::detail::lexical_cast(text, number) && number >= static_cast<double>(least) &&
            number <= static_cast<double>(most))
            return std::string();
        return "\"" + text + "\" is not a number from " + std::to_string(least) + " to " + std::to_string(most);
    };
    option_->check(CLI::Validator(refusal, ""));
    return *this;
}

declared_option& declared_option::existing_file() {
    option_->check(CLI::Validator(CLI::ExistingFile).description(""));
    return *this;
}

declared_option& declared_option::called(const char* value) {
    option_->type_name(value);
    return *this;
}

declared_option& declared_option::show_default() {
    option_->capture_default_str();
    return *this;
}

declared_command declared_command::add(const char* name, const char* what, const char* examples) {
    auto& app = *app_->add_subcommand(name, what);
    app.fallthrough();  // --profile, --yes and the like may follow the command
    app.footer(examples);
    return {app, *chosen_};
}

void declared_command::hide() { app_->group(""); }

void declared_command::require_command() { app_->require_subcommand(1); }

declared_option declared_command::add_option(const char* name, value into, const char* what) {
    return declared_option(*std::visit([&](auto* each) { return app_->add_option(name, *each, what); }, into));
}

declared_option declared_command::add_flag(const char* name, bool& into, const char* what) {
    return declared_option(*app_->add_flag(name, into, what));
}

declared_option declared_command::add_flag(const char* name, std::optional<std::string>& into, const char* what) {
    return declared_option(*app_->add_flag(name, into, what));
}

void declared_command::run(std::function<void(run_context&)> work) {
    choose([work = std::move(work)] { return chosen_command{work}; });
}

void declared_command::choose(std::function<chosen_command()> choose) {
    app_->final_callback([app = app_, chosen = chosen_, choose = std::move(choose)] {
        if (app->get_subcommands().empty()) *chosen = choose();
    });
}

void refuse_arguments(const char* words, const std::string& mistake) { throw CLI::ValidationError(words, mistake); }

command_file::command_file(int position, declaration declare) {
    const bool is_new = files_by_position().emplace(position, declare).second;
    if (!is_new) throw std::logic_error("Two commands have the position " + std::to_string(position) + ".");
}

void command_file::declare_all(declared_command& program) {
    for (const auto& [position, declare] : files_by_position()) declare(program);
}

}  // namespace ostrevan::terminal
