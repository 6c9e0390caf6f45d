#pragma once

#include <string>

#include "ostrevan/service.h"

namespace ostrevan {

/// How a command of the main menu is shown. Flags add up.
enum main_menu_flags : unsigned {
    main_menu_flag_disabled = 1,
    main_menu_flag_checked = 2,
};

/// A group of commands in the main menu. An index out of range is a bug check. [main-thread]
class main_menu_commands : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{5A1F9C5E-6A5B-4C0F-9C69-0D1B7BCE7F34}");

    struct display_t {
        std::string text;
        unsigned flags = 0;
    };

    [[nodiscard]] virtual std::size_t get_command_count() const noexcept = 0;
    /// The key of keyboard shortcuts and menu customisation.
    [[nodiscard]] virtual nuv::guid get_command(std::size_t index) const = 0;
    [[nodiscard]] virtual std::string get_name(std::size_t index) const = 0;
    /// Status-bar help; false when there is none.
    virtual bool get_description(std::size_t index, std::string& out) const = 0;
    /// The menu that the group belongs to. A group with a parent unknown to the player goes into its "Library" menu, in a
    /// submenu named after the component.
    [[nodiscard]] virtual nuv::guid get_parent() const noexcept = 0;

    /// Display state now: false when hidden. The default is the command's name without flags.
    virtual bool get_display(std::size_t index, display_t& out) const {
        out = {get_name(index), 0};
        return true;
    }
    virtual void execute(std::size_t index) = 0;
};

}  // namespace ostrevan
