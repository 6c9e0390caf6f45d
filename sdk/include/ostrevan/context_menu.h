#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/track.h"

namespace ostrevan {

/// How a command of the context menu is shown. Flags add up.
enum context_menu_flags : unsigned {
    context_flag_checked = 1,
    context_flag_disabled = 2,
    context_flag_grayed = 4,
    context_flag_radio = 8,  ///< the check mark is a radio mark
};

/// Who invokes or shows a context menu.
namespace context_caller {
/// The player's front end, for a selection of tracks.
inline constexpr nuv::guid selection = nuv::guid_of("{A89AAAA2-CDF5-4F20-B341-3BFC1880A594}");
/// No selection: the player enumerates commands for keyboard shortcuts and menu customisation.
inline constexpr nuv::guid command_enumeration = nuv::guid_of("{FABEE3E9-8901-4DF4-A2D7-B9898D86C39B}");
}  // namespace context_caller

/// A menu entry that an item builds each time its menu opens: a submenu with children, or a command without any. Lives as
/// long as the menu. [main-thread]
class context_menu_node {
public:
    virtual ~context_menu_node() = default;

    struct display_t {
        std::string text;
        unsigned flags = 0;
    };
    /// False when the entry is hidden.
    virtual bool get_display(display_t& out) = 0;
    [[nodiscard]] virtual std::size_t child_count() const noexcept { return 0; }
    virtual context_menu_node& child(std::size_t /*index*/) { uBugCheck(); }

    [[nodiscard]] virtual nuv::guid id() const noexcept { return {}; }
    [[nodiscard]] virtual std::string description() const { return {}; }
    virtual void execute() {}
};

/// A group of commands for a selection of tracks. An index out of range is a bug check, except for `get_item_description`.
/// [main-thread]
class context_menu_item : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{63435832-8F5E-492E-9300-BA23C446B3FE}");

    [[nodiscard]] virtual std::size_t get_item_count() const noexcept = 0;
    [[nodiscard]] virtual std::string get_item_name(std::size_t index) const = 0;
    /// The key of keyboard shortcuts and menu customisation.
    [[nodiscard]] virtual nuv::guid get_item_guid(std::size_t index) const = 0;
    /// The submenu the item is placed in, levels separated by "/".
    [[nodiscard]] virtual std::string get_item_default_path(std::size_t index) const = 0;
    /// Status-bar help; false when there is none.
    virtual bool get_item_description(std::size_t index, std::string& out) const = 0;
    [[nodiscard]] virtual nuv::guid get_parent() const noexcept = 0;

    /// Display state for a selection: false when hidden. The default is the item's name without flags.
    virtual bool item_get_display_data(context_menu_node::display_t& out, std::size_t index,
                                       metadb_handle_list_cref /*items*/, const nuv::guid& /*caller*/) {
        out = {get_item_name(index), 0};
        return true;
    }

    virtual void context_command(std::size_t index, metadb_handle_list_cref items, const nuv::guid& caller) = 0;

    /// The root of the submenu that the item builds for this selection; null for a plain command.
    virtual std::unique_ptr<context_menu_node> make_node(std::size_t /*index*/, metadb_handle_list_cref /*items*/,
                                                         const nuv::guid& /*caller*/) {
        return nullptr;
    }
    /// Runs one entry of such a submenu by its identifier, without building the menu.
    virtual void context_command_by_node(std::size_t /*index*/, const nuv::guid& /*node*/, metadb_handle_list_cref /*items*/,
                                         const nuv::guid& /*caller*/) {}
};

}  // namespace ostrevan
