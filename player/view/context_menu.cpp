#include "player/view/context_menu.h"

#include <functional>
#include <memory>
#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::view {
namespace {

void set_display(menu_entry& entry, const context_menu_node::display_t& display) {
    entry.text = display.text;
    entry.is_enabled = (display.flags & (context_flag_disabled | context_flag_grayed)) == 0;
    entry.is_checked = (display.flags & context_flag_checked) != 0;
    entry.is_radio = (display.flags & context_flag_radio) != 0;
}

/// Appends a component's submenu. `owner` keeps the root alive as long as any entry that runs one of its nodes.
bool append_node(std::vector<menu_entry>& level, const std::shared_ptr<context_menu_node>& owner, context_menu_node& node) {
    context_menu_node::display_t display;
    if (!node.get_display(display)) return false;
    menu_entry entry{.id = node.id(), .description = node.description()};
    set_display(entry, display);
    for (std::size_t i = 0; i < node.child_count(); ++i) append_node(entry.children, owner, node.child(i));
    if (entry.children.empty()) entry.run = [owner, &node] { core::call_component(node, [&] { node.execute(); }); };
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
    entry.run = [&item, index, &tracks] {
        core::call_component(item, [&] { item.context_command(index, tracks, context_caller::selection); });
    };
    level.push_back(std::move(entry));
}

bool has_node(context_menu_node& node, const nuv::guid& id) {
    if (node.id() == id && node.child_count() == 0) return true;
    for (std::size_t i = 0; i < node.child_count(); ++i)
        if (has_node(node.child(i), id)) return true;
    return false;
}

}  // namespace

std::vector<menu_entry> context_menu_for(const core::service_registry& services, metadb_handle_list_cref tracks) {
    std::vector<menu_entry> menu;
    services.for_each<context_menu_item>([&](context_menu_item& item) {
        for (std::size_t i = 0; i < item.get_item_count(); ++i)
            services.guard().call(item, "an entry of the menu", [&] { append_item(menu, item, i, tracks); });
    });
    return menu;
}

bool run_context_command(const core::service_registry& services, const nuv::guid& id, metadb_handle_list_cref tracks) {
    const metadb_handle_list nothing;
    std::function<void(context_menu_item&)> run;
    context_menu_item* owner = nullptr;
    services.for_each<context_menu_item>([&](context_menu_item& item) {
        for (std::size_t i = 0; i < item.get_item_count() && owner == nullptr; ++i) {
            const auto root = item.make_node(i, nothing, context_caller::command_enumeration);
            if (root ? !has_node(*root, id) : item.get_item_guid(i) != id) continue;
            owner = &item;
            run = [&, i, by_node = root != nullptr](context_menu_item& found) {
                if (by_node) found.context_command_by_node(i, id, tracks, context_caller::selection);
                else found.context_command(i, tracks, context_caller::selection);
            };
        }
    });
    if (owner != nullptr) core::call_component(*owner, [&] { run(*owner); });
    return owner != nullptr;
}

std::string rating_path(const std::string& stars) {
    const bool is_none = stars == "0" || stars == "none";
    return "Rating/" + (is_none ? "not set" : stars);
}

}  // namespace ostrevan::view
