#include "player/terminal/completion_values.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "player/sqlite/backup.h"
#include "player/terminal/menu_output.h"
#include "player/view/columns.h"
#include "player/view/context_menu.h"
#include "player/view/known_fields.h"
#include "player/view/main_menu.h"
#include "player/view/settings_tree.h"

namespace ostrevan::terminal {
namespace {

using name_list = std::vector<std::string>;

name_list all_columns(const run_context& context) {
    name_list found;
    for (const auto& each : view::all_columns(context.player.services)) found.push_back(each.name);
    return found;
}

/// Of the commands that can be run, and of the submenus above them for a menu that is deep.
void add_paths(const std::vector<view::menu_entry>& level, const std::string& above, name_list& found) {
    for (const auto& entry : level) {
        if (entry.run) found.push_back(above + entry.text);
        add_paths(entry.children, above + entry.text + "/", found);
    }
}

name_list paths_of(const std::vector<view::menu_entry>& menu) {
    name_list found;
    add_paths(menu, "", found);
    return found;
}

name_list all_main_menu(const run_context& context) {
    return paths_of(view::main_menu_of(context.player.components, context.player.services.guard()));
}

/// Of any track: there is no menu without one.
name_list all_context_menu(const run_context& context) {
    const auto& tracks = context.player.library.items();
    if (tracks.empty()) return {};
    return paths_of(view::context_menu_for(context.player.services, metadb_handle_list({tracks.front()})));
}

name_list all_stars(const run_context& context) {
    const std::string submenu = "/" + view::rating_path("");
    name_list found{"none"};
    for (const auto& path : all_context_menu(context))
        if (const auto at = path.find(submenu); at != std::string::npos && path.find(' ', at) == std::string::npos)
            found.push_back(path.substr(at + submenu.size()));
    return found;
}

name_list all_playlists(const run_context& context) { return context.player.library.playlists().names(); }

name_list all_settings(const run_context& context) {
    name_list found;
    for (const auto& [setting, checkbox, depth] : view::settings_tree(context.player.services))
        if (checkbox != nullptr) found.emplace_back(setting->label());
    return found;
}

name_list all_copies(const run_context& context) {
    name_list found;
    for (const auto& each : sqlite::stored_copies(context.player.profile() + "/index.sqlite"))
        found.push_back(each.path.filename().string());
    return found;
}

name_list all_fields(const run_context& context) {
    name_list found;
    for (const auto& name : view::usual_and_published(context.player.fields)) found.push_back("%" + name + "%");
    return found;
}

/// By the names that the help gives values. [main-thread]
const std::map<std::string_view, name_list (*)(const run_context& context)> known{
    {"COLUMN", all_columns},  {"COMMAND", all_context_menu}, {"COPY", all_copies},
    {"ENTRY", all_main_menu}, {"PLAYLIST", all_playlists},   {"QUERY", all_fields},
    {"SCRIPT", all_fields},   {"SETTING", all_settings},     {"STARS", all_stars},
};

const std::map<std::string_view, std::string_view> in_file_system{
    {"COMMAND", ":"}, {"FILE", ":"}, {"PATH", ":"}, {"TRACK", ":"}, {"DIR", "::"}, {"FOLDER", "::"},
};

}  // namespace

bool has_values(const completion& wanted) { return known.contains(wanted.value); }

std::string completion_text(const completion& wanted) {
    std::string text;
    const auto add = [&](const std::string& line) { text += (text.empty() ? "" : "\n") + line; };
    for (const auto& [word, meaning] : wanted.words) add(word + "\t" + meaning.substr(0, meaning.find('\n')));
    if (const auto found = in_file_system.find(wanted.value); found != in_file_system.end())
        add(std::string(found->second) + "\t");
    return text;
}

void print_completion(run_context& context, completion wanted) {
    // Of a query or script, the field begun last; a second percent sign has ended it.
    const bool is_script = wanted.value == "QUERY" || wanted.value == "SCRIPT";
    const auto sign = is_script && std::ranges::count(wanted.begun, '%') % 2 == 1 ? wanted.begun.rfind('%') : 0;
    const auto begun = wanted.begun.substr(sign);
    wanted.before += wanted.begun.substr(0, sign);
    if (!is_script || begun.starts_with('%'))
        for (const auto& name : context.on_main([&] { return known.at(wanted.value)(context); }))
            if (begins_with(name, begun)) wanted.words.push_back({wanted.before + name, ""});
    context.out << completion_text(wanted) << '\n';
}

}  // namespace ostrevan::terminal
