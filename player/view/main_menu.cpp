#include "player/view/main_menu.h"

#include <iterator>

#include "ostrevan/main_menu.h"

namespace ostrevan::view {
namespace {

std::vector<menu_entry> entries_of(main_menu_commands& group) {
    std::vector<menu_entry> entries;
    for (std::size_t i = 0; i < group.get_command_count(); ++i) {
        main_menu_commands::display_t display;
        if (!group.get_display(i, display)) continue;
        menu_entry entry{.text = display.text,
                         .is_enabled = (display.flags & main_menu_flag_disabled) == 0,
                         .is_checked = (display.flags & main_menu_flag_checked) != 0,
                         .id = group.get_command(i)};
        group.get_description(i, entry.description);
        entry.run = [&group, i] { core::call_component(group, [&] { group.execute(i); }); };
        entries.push_back(std::move(entry));
    }
    return entries;
}

}  // namespace

std::vector<menu_entry> main_menu_of(const std::vector<core::loaded_component>& components,
                                     const core::component_guard& guard) {
    std::vector<menu_entry> menu;
    for (const auto& component : components) {
        for (std::size_t i = 0; i < component.api->service_count(); ++i) {
            const auto entry = component.api->service_at(i);
            if (entry.service_class != main_menu_commands::class_guid) continue;
            auto& group = static_cast<main_menu_commands&>(*entry.service);
            std::vector<menu_entry> entries;
            guard.call(group, "its menu", [&] { entries = entries_of(group); });
            if (entries.empty()) continue;
            auto& level = submenu_at(menu, "Library/" + name_of(component));
            level.insert(level.end(), std::make_move_iterator(entries.begin()), std::make_move_iterator(entries.end()));
        }
    }
    return menu;
}

}  // namespace ostrevan::view
