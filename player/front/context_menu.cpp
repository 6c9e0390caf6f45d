#include "player/front/context_menu.h"

#include <memory>
#include <utility>

namespace ostrevan::front {
namespace {

void set_display(menu_entry& entry, const context_menu_node::display_t& display) {
    entry.text = display.text;
    entry.is_enabled = (display.flags & (context_flag_disabled | context_flag_grayed)) == 0;
    entry.is_checked = (display.flags & context_flag_checked) != 0;
    entry.is_radio = (display.flags & context_flag_radio) != 0;
}

/// A component's own submenu. `owner` keeps the root alive as long as any entry that runs one of its nodes.
bool append_node(std::vector<menu_entry>& level, const std::shared_ptr<context_menu_node>& owner, context_menu_node& node) {
    context_menu_node::display_t display;
    if (!node.get_display(display)) return false;
    menu_entry entry{.id = node.id(), .description = node.description()};
    set_display(entry, display);
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
    set_display(entry, display);
    item.get_item_description(index, entry.description);
    entry.run = [&item, index, &tracks] { item.context_command(index, tracks, context_caller::selection); };
    level.push_back(std::move(entry));
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

bool run_context_command(const service_registry& services, const nuv::guid& id, metadb_handle_list_cref tracks) {
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
