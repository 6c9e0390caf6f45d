#include "player/terminal/command.h"

#include <map>
#include <utility>

namespace ostrevan::terminal {
namespace {

/// Made at first use, since the order of construction of static objects in several files is undefined.
std::map<int, command_file::declaration>& files_by_position() {
    static std::map<int, command_file::declaration> files;
    return files;
}

}  // namespace

CLI::App& command_declarations::add(CLI::App& parent, const char* name, const char* what, const char* examples) {
    auto& app = *parent.add_subcommand(name, what);
    app.fallthrough();  // --profile, --yes and the like may follow the command
    app.footer(examples);
    return app;
}

void command_declarations::run(CLI::App& app, std::function<void(run_context&)> work) {
    choose(app, [work = std::move(work)] { return chosen_command{work}; });
}

void command_declarations::choose(CLI::App& app, std::function<chosen_command()> choose) {
    app.final_callback([this, choose = std::move(choose)] { chosen_ = choose(); });
}

command_file::command_file(int position, declaration declare) { files_by_position().emplace(position, declare); }

void command_file::declare_all(command_declarations& declarations) {
    for (const auto& [position, declare] : files_by_position()) declare(declarations);
}

}  // namespace ostrevan::terminal
