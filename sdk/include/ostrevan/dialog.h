#pragma once

#include <span>

#include "ostrevan/service.h"

namespace ostrevan {

/// Dialogs as data: a table of controls, and an object with the rules. Where the system has no windows of its own for a
/// component to fill, the player's front end draws the table.
enum class dialog_control_kind {
    separator,     ///< a line with a heading
    radio_button,  ///< consecutive ones form a group; one of the group is checked
    check_box,
    button,
};

struct dialog_control {
    int id;
    dialog_control_kind kind;
    const char* text;
};

/// The whole look of a dialog. The tables live until the process ends.
struct dialog_layout {
    const char* title;
    const char* font;
    unsigned font_points;
    std::span<const dialog_control> controls;
};

/// The group of the radio button with this id: the consecutive ones around it, itself included. Empty when the layout has
/// no such radio button. For those who draw dialogs.
[[nodiscard]] std::span<const dialog_control> radio_group(const dialog_layout& layout, int id) noexcept;

/// Numbers of the two buttons that every dialog has; the return and escape keys press them.
inline constexpr int dialog_ok = 1;
inline constexpr int dialog_cancel = 2;

/// A dialog that is open. An id that the layout does not have is a bug check. [main-thread]
class dialog_window {
public:
    [[nodiscard]] virtual bool is_checked(int id) const = 0;
    /// Checking a radio button unchecks the others of its group.
    virtual void set_checked(int id, bool checked) = 0;
    virtual void set_enabled(int id, bool enabled) = 0;
    /// Ends the dialog, but not before a call of its rules has returned.
    virtual void close() = 0;
    /// The window in the system's terms, to own further dialogs; null where there is none.
    [[nodiscard]] virtual void* native() const noexcept { return nullptr; }

protected:
    ~dialog_window() = default;
};

/// The rules of one dialog. The player holds a reference while it is open. [main-thread]
class dialog_rules : public service_base {
public:
    [[nodiscard]] virtual const dialog_layout& layout() const noexcept = 0;
    /// Before the dialog is shown.
    virtual void on_open(dialog_window& window) = 0;
    /// A button was pressed. The dialog stays open unless this closes it.
    virtual void on_button(dialog_window& window, int id) = 0;
    /// The window is gone, for whatever reason, and must not be used any more. The last call.
    virtual void on_closed() noexcept {}
};
using dialog_rules_ptr = service_ptr_t<dialog_rules>;

/// Draws dialogs. [main-thread]
class dialog_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{0D1F8B43-4E44-4E25-8A67-6E2B7C0B9A51}");

    /// Opens the dialog without waiting for it.
    virtual void open(dialog_rules_ptr rules) = 0;
};

/// A dialog known to the registry.
class registered_dialog {
public:
    virtual void bring_forward() = 0;
    /// The window in the system's terms (an `HWND`), null where there is none. On Windows the player's message loop offers
    /// each message to the dialogs that have one, with `IsDialogMessageW`; without that no key works in them.
    [[nodiscard]] virtual void* native() const noexcept { return nullptr; }

protected:
    ~registered_dialog() = default;
};

/// Of the dialogs registered here one may be open at a time. [main-thread]
class dialog_registry : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{C3B9F5B2-9C3D-4E0C-8F0F-2F4C1C7D6B19}");

    [[nodiscard]] virtual bool can_create_new() const noexcept = 0;
    /// Does nothing when none is open.
    virtual void poke_existing() = 0;
    /// Called by the code that draws a dialog. A dialog must be forgotten before it is destroyed.
    virtual void add(registered_dialog& dialog) = 0;
    virtual void forget(registered_dialog& dialog) noexcept = 0;
};

/// The player's registry; without one a dialog may always be made. [main-thread]
bool ModalDialog_CanCreateNew() noexcept;
void ModalDialog_PokeExisting();

}  // namespace ostrevan
