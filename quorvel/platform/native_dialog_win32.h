#pragma once

#include <windows.h>

#include <memory>

#include "ostrevan/dialog.h"

namespace quorvel {

/// A modeless dialog of the system made from a table. It lives as long as its window: when that is destroyed, by a button,
/// by the owner or at the end of the player, the dialog leaves the player's registry and releases the rules. [main-thread]
class native_dialog final : public ostrevan::dialog_window, public ostrevan::registered_dialog {
public:
    /// Makes the dialog, owned by the player's main window, lets the rules fill it in and shows it. Throws
    /// `exception_system_error` or what the rules throw; then there is no dialog.
    static void open(ostrevan::dialog_rules_ptr rules);
    /// Destroys the open ones, before the player ends or the module is unloaded.
    static void destroy_all() noexcept;

    explicit native_dialog(ostrevan::dialog_rules_ptr rules);
    ~native_dialog();
    native_dialog(const native_dialog&) = delete;
    native_dialog& operator=(const native_dialog&) = delete;

    [[nodiscard]] bool is_checked(int id) const override;
    void set_checked(int id, bool checked) override;
    void set_enabled(int id, bool enabled) override;
    void close() override;
    /// Null once the window is destroyed, which may happen during a call of the rules.
    [[nodiscard]] void* native() const noexcept override { return window_; }
    void bring_forward() override;

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;

    [[nodiscard]] const ostrevan::dialog_layout& layout() const noexcept { return rules_->layout(); }
    /// A bug check if the layout has no such control.
    [[nodiscard]] HWND control(int id) const;
    [[nodiscard]] bool is_button(int id) const noexcept;
    void create();
    void fill_in();
    void show();
    void destroy() noexcept;
    void press(int id) noexcept;
    void report(const char* reason) const noexcept;
    void on_destroy() noexcept;

    const std::shared_ptr<const void> separator_class_;
    const ostrevan::dialog_rules_ptr rules_;
    const ostrevan::service_ptr_t<ostrevan::dialog_registry> registry_;
    HWND window_ = nullptr;
    bool rules_are_running_ = false;
    bool is_closing_ = false;
    std::shared_ptr<native_dialog> self_;  ///< while there is a window
};

}  // namespace quorvel
