#include <iostream>

#include "player/terminal/commands.h"
#include "player/terminal/exit_status.h"
#include "player/terminal/switch_word.h"
#include "player/view/settings_tree.h"

namespace ostrevan::terminal {
namespace {

/// A label and the remark in parentheses at its end.
std::pair<std::string, std::string> parts_of(const std::string& label) {
    const auto open = label.rfind(" (");
    if (open == std::string::npos || !label.ends_with(')')) return {label, ""};
    return {label.substr(0, open), label.substr(open + 1)};
}

void print(const advanced_setting& setting, const advanced_checkbox* checkbox, std::size_t depth) {
    const std::string indent(2 * depth, ' ');
    const auto [name, remark] = parts_of(setting.label());
    std::cout << indent << name;
    if (checkbox != nullptr) std::cout << ": " << switch_word(checkbox->get_state());
    if (!remark.empty()) std::cout << '\n' << indent << "  " << remark;
    std::cout << '\n';
}

}  // namespace

void run(run_context& context, const show_settings& arguments) {
    const auto tree = view::settings_tree(context.player.services);
    if (!arguments.name) {
        for (const auto& [setting, checkbox, depth] : tree) print(*setting, checkbox, depth);
        return context.screen.note("A setting can be named by a part of its label: ostrevan settings synchronize on");
    }
    advanced_checkbox* checkbox = nullptr;
    try {
        checkbox = &view::find_checkbox(tree, *arguments.name);
    } catch (const std::invalid_argument& error) {
        throw usage_error(error.what());
    }
    if (arguments.value) checkbox->set_state(parse_switch(*arguments.value));
    print(*checkbox, checkbox, 0);
}

}  // namespace ostrevan::terminal
