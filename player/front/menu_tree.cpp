#include "player/front/menu_tree.h"

#include <algorithm>
#include <stdexcept>

#include "nuv/text.h"

namespace ostrevan::front {
namespace {

/// The submenu at a default path, made where it is missing.
std::vector<menu_entry>& submenu_at(std::vector<menu_entry>& menu, std::string_view path) {
    auto* level = &menu;
    while (!path.empty()) {
        const auto slash = path.find('/');
        const auto name = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
        auto it = std::ranges::find_if(*level, [&](const menu_entry& e) { return !e.run && e.text == name; });
        if (it == level->end()) it = level->insert(level->end(), menu_entry{.text = std::string(name)});
        level = &it->children;
    }
    return *level;
}

/// A component's own submenu. `owner` keeps the root alive as long as any entry that runs one of its nodes.
bool append_node(std::vector<menu_entry>& level, const std::shared_ptr<context_menu_node>& owner, context_menu_node& node) {
    context_menu_node::display_t display;
    if (!node.get_display(display)) return false;
    menu_entry entry{.text = display.text, .flags = display.flags, .id = node.id(), .description = node.description()};
    for (std::size_t i = 0; i < node.child_count(); ++i) append_node(entry.children, owner, node.child(i));
    if (entry.children.empty()) entry.run = [owner, &node] { node.execute(); };
    level.push_back(std::move(entry));
    return true;
}

void append_item(std::vector<menu_entry>& menu, context_menu_item& item, std::size_t index, metadb_handle_list_cref tracks) {
    auto& level = submenu_at(menu, item.get_item_default_path(index));
    if (auto root = std::shared_ptr(item.make_node(index, tracks, context_caller::selection))) {
        if (append_node(level, root, *root)) level.back().id = item.get_item_guid(index);
        return;
    }
    menu_entry entry{.id = item.get_item_guid(index)};
    context_menu_node::display_t display;
    if (!item.item_get_display_data(display, index, tracks, context_caller::selection)) return;
    entry.text = display.text;
    entry.flags = display.flags;
    item.get_item_description(index, entry.description);
    entry.run = [&item, index, &tracks] { item.context_command(index, tracks, context_caller::selection); };
    level.push_back(std::move(entry));
}

std::string names_of(const std::vector<menu_entry>& level) {
    std::string names;
    for (const auto& entry : level) names += (names.empty() ? "" : ", ") + entry.text;
    return names.empty() ? "nothing" : names;
}

bool has_node(context_menu_node& node, const nuv::guid& id) {
    if (node.id() == id && node.child_count() == 0) return true;
    for (std::size_t i = 0; i < node.child_count(); ++i)
        if (has_node(node.child(i), id)) return true;
    return false;
}

}  // namespace

std::vector<menu_entry> context_menu_for(const service_registry& services, metadb_handle_list_cref tracks) {
    std::vector<menu_entry> menu;
    services.for_each<context_menu_item>([&](context_menu_item& item) {
        for (std::size_t i = 0; i < item.get_item_count(); ++i) append_item(menu, item, i, tracks);
    });
    return menu;
}

const menu_entry& find_command(const std::vector<menu_entry>& menu, std::string_view path) {
    const auto* level = &menu;
    auto rest = path;
    for (;;) {
        const auto slash = rest.find('/');
        const auto name = rest.substr(0, slash);
        const auto it =
            std::ranges::find_if(*level, [&](const menu_entry& e) { return nuv::equal_ascii_nocase(e.text, name); });
        if (it == level->end())
            throw std::invalid_argument("There is no menu entry \"" + std::string(path) + "\". At \"" + std::string(name) +
                                        "\" there is: " + names_of(*level) + ".");
        if (slash == std::string_view::npos) {
            if (it->run) return *it;
            throw std::invalid_argument("\"" + std::string(path) + "\" is a submenu with: " + names_of(it->children) + ".");
        }
        level = &it->children;
        rest = rest.substr(slash + 1);
    }
}

bool run_command(const service_registry& services, const nuv::guid& id, metadb_handle_list_cref tracks) {
    const metadb_handle_list nothing;
    for (std::size_t s = 0, n = services.count(context_menu_item::class_guid); s < n; ++s) {
        auto& item = static_cast<context_menu_item&>(*services.at(context_menu_item::class_guid, s));
        for (std::size_t i = 0; i < item.get_item_count(); ++i) {
            if (const auto root = item.make_node(i, nothing, context_caller::command_enumeration)) {
                if (!has_node(*root, id)) continue;
                item.context_command_by_node(i, id, tracks, context_caller::selection);
                return true;
            }
            if (item.get_item_guid(i) != id) continue;
            item.context_command(i, tracks, context_caller::selection);
            return true;
        }
    }
    return false;
}

}  // namespace ostrevan::front
