#include "tests/module/loaded_component.h"

#include <stdexcept>

#include "ostrevan/context_menu.h"
#include "ostrevan/main_menu.h"

namespace module_test {
namespace {

/// The group that has a command of this name, and its place there.
std::pair<ostrevan::context_menu_item*, std::size_t> context_command(const std::string& name) {
    std::pair<ostrevan::context_menu_item*, std::size_t> found{};
    ostrevan::for_each_service<ostrevan::context_menu_item>([&](auto& group) {
        for (std::size_t i = 0; i < group.get_item_count(); ++i)
            if (group.get_item_name(i) == name) found = {&group, i};
    });
    if (found.first == nullptr) throw std::runtime_error("the context menu has no '" + name + "'");
    return found;
}

}  // namespace

ostrevan::get_interface_function loaded_library::entry() const {
    return reinterpret_cast<ostrevan::get_interface_function>(address_of(ostrevan::entry_name));
}

int loaded_library::call(const char* name) const { return reinterpret_cast<int (*)()>(address_of(name))(); }

void tiny_player::run_main(const std::string& name) {
    auto& menu = player_.component_service<ostrevan::main_menu_commands>();
    for (std::size_t i = 0; i < menu.get_command_count(); ++i)
        if (menu.get_name(i) == name) return menu.execute(i);
    throw std::runtime_error("the main menu has no '" + name + "'");
}

void tiny_player::run_context(const std::string& name, const ostrevan::metadb_handle_list& tracks) {
    const auto [group, index] = context_command(name);
    group->context_command(index, tracks, ostrevan::context_caller::selection);
}

bool tiny_player::is_grayed(const std::string& name, const ostrevan::metadb_handle_list& tracks) {
    const auto [group, index] = context_command(name);
    ostrevan::context_menu_node::display_t shown;
    group->item_get_display_data(shown, index, tracks, ostrevan::context_caller::selection);
    return (shown.flags & ostrevan::context_flag_grayed) != 0;
}

}  // namespace module_test
