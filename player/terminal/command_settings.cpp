#include <iostream>
#include <optional>
#include "player/terminal/command.h"
#include "player/terminal/switch_word.h"
#include "player/view/settings_tree.h"

namespace ostrevan::terminal {
namespace {

struct setting_words {
    std::optional<std::string> name{};
    std::optional<std::string> value{};
};

constexpr const char* settings_examples =
    "Examples:\n"
    "  ostrevan settings\n"
    "  ostrevan settings synchronize on";

/// Splits a label from the remark in parentheses at its end.
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

void run_settings(run_context& context, const setting_words& words) {
    const auto tree = view::settings_tree(context.player.services);
    if (!words.name) {
        for (const auto& [setting, checkbox, depth] : tree) print(*setting, checkbox, depth);
        return context.screen.note("A setting can be named by a part of its label: ostrevan settings synchronize on");
    }
    auto& checkbox = view::find_checkbox(tree, *words.name);
    if (words.value) checkbox.set_state(parse_switch(*words.value));
    print(checkbox, &checkbox, 0);
}

const command_file settings_command(110, [](declared_command& program) {
    const auto words = std::make_shared<setting_words>();
    auto app = program.add("settings", "Show or change advanced settings", settings_examples);
    app.add_option("NAME", &words->name, "Label, part of a label, or {GUID}");
    app.add_option("VALUE", &words->value, "on or off");
    app.run([words](run_context& context) { run_settings(context, *words); });
});

}  // namespace
}  // namespace ostrevan::terminal
