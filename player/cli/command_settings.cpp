#include <iostream>

#include "nuv/text.h"
#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/front/settings_tree.h"

namespace ostrevan::cli {
namespace {

bool parse_switch(const std::string& text) {
    for (const char* on : {"on", "true", "yes", "1"})
        if (nuv::equal_ascii_nocase(text, on)) return true;
    for (const char* off : {"off", "false", "no", "0"})
        if (nuv::equal_ascii_nocase(text, off)) return false;
    throw usage_error("\"" + text + "\" is neither on nor off.");
}

const char* state_text(const advanced_checkbox& checkbox) { return checkbox.get_state() ? "on" : "off"; }

}  // namespace

void run(run_context& context, const show_settings& arguments) {
    const auto tree = front::settings_tree(context.player.services());
    if (!arguments.name) {
        for (const auto& [setting, checkbox, depth] : tree) {
            std::cout << std::string(2 * depth, ' ') << setting->label();
            if (checkbox != nullptr) std::cout << ": " << state_text(*checkbox);
            std::cout << '\n';
        }
        return;
    }
    advanced_checkbox* checkbox = nullptr;
    try {
        checkbox = &front::find_checkbox(tree, *arguments.name);
    } catch (const std::invalid_argument& error) {
        throw usage_error(error.what());
    }
    if (arguments.value) checkbox->set_state(parse_switch(*arguments.value));
    std::cout << checkbox->label() << ": " << state_text(*checkbox) << '\n';
}

}  // namespace ostrevan::cli
