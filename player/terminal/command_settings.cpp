#include <optional>
#include <sstream>
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

void print(std::ostream& out, const advanced_setting& setting, const advanced_checkbox* checkbox, std::size_t depth) {
    const std::string indent(2 * depth, ' ');
    const auto [name, remark] = parts_of(setting.label());
    out << indent << name;
    if (checkbox != nullptr) out << ": " << switch_word(checkbox->get_state());
    if (!remark.empty()) out << '\n' << indent << "  " << remark;
    out << '\n';
}

/// [main-thread]
std::string settings_text(const app::session& player, const setting_words& words) {
    std::ostringstream out;
    const auto tree = view::settings_tree(player.services);
    if (!words.name) {
        for (const auto& [setting, checkbox, depth] : tree) print(out, *setting, checkbox, depth);
    } else {
        auto& checkbox = view::find_checkbox(tree, *words.name);
        if (words.value) checkbox.set_state(parse_switch(*words.value));
        print(out, checkbox, &checkbox, 0);
    }
    return out.str();
}

void run_settings(run_context& context, const setting_words& words) {
    context.out << context.on_main([&] { return settings_text(context.player, words); });
    if (!words.name) context.screen.note("A setting can be named by a part of its label: ostrevan settings synchronize on");
}

const command_file settings_command(110, [](declared_command& program) {
    const auto words = std::make_shared<setting_words>();
    auto app = program.add("settings", "Show or change advanced settings", settings_examples);
    app.add_option("SETTING", &words->name, "Label, part of a label, or {GUID}");
    app.add_option("VALUE", &words->value, "on or off");
    app.run([words](run_context& context) { run_settings(context, *words); });
});

}  // namespace
}  // namespace ostrevan::terminal
