#include <optional>

#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/menu_output.h"
#include "player/terminal/switch_word.h"
#include "player/view/main_menu.h"

namespace ostrevan::terminal {
namespace {

struct menu_words {
    std::optional<std::string> command{};
    /// "on" or "off": the state of the mark afterwards.
    std::optional<std::string> value{};
};

constexpr const char* menu_examples =
    "Examples:\n"
    "  ostrevan menu\n"
    "  ostrevan menu 'Library/Playback Statistics/Show recently played'\n"
    "  ostrevan menu 'recently played'\n"
    "  ostrevan menu monitor off\n"
    "  ostrevan menu export\n"
    "  ostrevan --yes --file backup.xml --check 'Full backup' menu export\n"
    "  ostrevan --yes --file backup.xml --uncheck Rating menu import\n"
    "Without a path, prints the menu with marks and greyed entries. Dialogs are shown on the terminal; without one,\n"
    "--yes presses OK and --no Cancel, after --check and --uncheck have changed the marks with these labels.";

const view::menu_entry& entry_of(const std::vector<view::menu_entry>& menu, const std::string& name) {
    const auto id = nuv::parse_guid(name);
    if (!id) return view::find_command(menu, name);
    const auto* const entry = view::find_command(menu, *id);
    if (entry == nullptr) throw system::user_error("The menu has no command " + name + ".");
    return *entry;
}

std::vector<view::menu_entry> main_menu(const run_context& context) {
    const auto& player = context.player;
    return context.on_main([&] { return view::main_menu_of(player.components, player.services.guard()); });
}

/// The current mark of the command.
bool is_marked(run_context& context, const nuv::guid& id) {
    const auto menu = main_menu(context);
    const auto* const entry = view::find_command(menu, id);
    return entry != nullptr && entry->is_checked;
}

void run_main_menu(run_context& context, const menu_words& words) {
    const auto menu = main_menu(context);
    if (!words.command) return print_menu(context.out, menu);
    const auto& entry = entry_of(menu, *words.command);
    const bool before = entry.is_checked;
    const bool wanted = words.value ? parse_switch(*words.value) : !before;
    const auto refuse = [&] { throw system::user_error("\"" + entry.text + "\" cannot be switched on or off."); };
    if (words.value && entry.text.ends_with("...")) refuse();  // it opens a dialog
    if (wanted != before) run_entry(context, entry, "now");
    const bool after = is_marked(context, entry.id);
    if (words.value && after != wanted) refuse();
    if (words.value || after != before) context.out << entry.text << ": " << switch_word(after) << '\n';
    else context.screen.note_done(entry.text + " is done");
}

const command_file menu_command(70, [](declared_command& program) {
    const auto words = std::make_shared<menu_words>();
    auto app = program.add("menu", "List the main menu, or run one command", menu_examples);
    app.add_option("ENTRY", &words->command, "A menu path, the end of one or a part of its name, or {GUID}");
    app.add_option("VALUE", &words->value, "on or off, for a command with a mark");
    app.choose([words] {
        return chosen_command{[words](run_context& context) { run_main_menu(context, *words); }, words->command.has_value()};
    });
});

}  // namespace
}  // namespace ostrevan::terminal
