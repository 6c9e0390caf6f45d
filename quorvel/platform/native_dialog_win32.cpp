#include "quorvel/platform/native_dialog_win32.h"

#include <algorithm>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "ostrevan/core_api.h"
#include "quorvel/common/messages.h"
#include "quorvel/platform/dialog_arrangement_win32.h"
#include "quorvel/platform/dialog_template_win32.h"
#include "quorvel/platform/module_win32.h"
#include "quorvel/platform/separator_win32.h"
#include "quorvel/platform/system_error_win32.h"

namespace quorvel {
namespace {

using ostrevan::dialog_control_kind;

/// The dialogs that have a window.
std::vector<native_dialog*>& open_dialogs() {
    static std::vector<native_dialog*> dialogs;
    return dialogs;
}

}  // namespace

native_dialog::native_dialog(ostrevan::dialog_rules_ptr rules)
    : separator_class_(hold_separator_class(this_module())),
      rules_(std::move(rules)),
      registry_(ostrevan::find_service<ostrevan::dialog_registry>()) {}

native_dialog::~native_dialog() = default;

void native_dialog::open(ostrevan::dialog_rules_ptr rules) {
    const auto dialog = std::make_shared<native_dialog>(std::move(rules));
    dialog->create();
    dialog->self_ = dialog;
    try {
        dialog->fill_in();
    } catch (...) {
        dialog->destroy();
        throw;
    }
    if (dialog->is_closing_) dialog->destroy();
    else if (dialog->window_ != nullptr) dialog->show();
}

void native_dialog::destroy_all() noexcept {
    while (!open_dialogs().empty()) {
        native_dialog* const last = open_dialogs().back();
        open_dialogs().pop_back();
        last->destroy();
    }
}

void native_dialog::create() {
    const auto memory = dialog_template(layout());
    open_dialogs().reserve(open_dialogs().size() + 1);
    window_ = CreateDialogIndirectParamW(this_module(), reinterpret_cast<const DLGTEMPLATE*>(memory.data()),
                                         static_cast<HWND>(ostrevan::core_api::main_window()), &procedure,
                                         reinterpret_cast<LPARAM>(this));
    if (window_ == nullptr) throw_last_error();
    open_dialogs().push_back(this);
}

void native_dialog::fill_in() {
    centre_on_owner(window_);  // on the screen at whose resolution it is measured
    arrange_dialog(window_, layout());
    if (registry_) registry_->add(*this);
    rules_are_running_ = true;
    rules_->on_open(*this);
    rules_are_running_ = false;
}

void native_dialog::show() {
    centre_on_owner(window_);
    ShowWindow(window_, SW_SHOW);
    SetFocus(GetNextDlgTabItem(window_, nullptr, FALSE));
}

void native_dialog::destroy() noexcept {
    if (window_ != nullptr) DestroyWindow(window_);
}

HWND native_dialog::control(int id) const {
    const auto controls = layout().controls;
    if (std::ranges::find(controls, id, &ostrevan::dialog_control::id) == controls.end())
        ostrevan::uBugCheck("dialog_window: the layout has no control with this id");
    return GetDlgItem(window_, id);
}

/// Escape presses the cancel button, even if the table has none.
bool native_dialog::is_button(int id) const noexcept {
    return id == ostrevan::dialog_cancel || std::ranges::any_of(layout().controls, [id](const auto& control) {
               return control.id == id && control.kind == dialog_control_kind::button;
           });
}

bool native_dialog::is_checked(int id) const { return SendMessageW(control(id), BM_GETCHECK, 0, 0) == BST_CHECKED; }

void native_dialog::set_checked(int id, bool checked) {
    if (checked)
        for (const auto& other : ostrevan::radio_group(layout(), id))
            SendMessageW(control(other.id), BM_SETCHECK, BST_UNCHECKED, 0);
    SendMessageW(control(id), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void native_dialog::set_enabled(int id, bool enabled) { EnableWindow(control(id), enabled ? TRUE : FALSE); }

void native_dialog::close() {
    is_closing_ = true;
    if (!rules_are_running_) destroy();
}

void native_dialog::bring_forward() {
    for (const HWND hidden : {GetWindow(window_, GW_OWNER), window_})
        if (hidden != nullptr && IsIconic(hidden) != FALSE) ShowWindow(hidden, SW_RESTORE);
    // A file dialog may be open before it.
    SetForegroundWindow(GetLastActivePopup(window_));
}

/// A question of the rules may run a message loop, in which other presses are ignored and the window may be destroyed. No
/// exception may reach the system. A dialog that fails to cancel must not stay open for ever.
void native_dialog::press(int id) noexcept {
    if (rules_are_running_) return;
    const auto alive = self_;
    rules_are_running_ = true;
    try {
        rules_->on_button(*this, id);
    } catch (const std::exception& e) {
        is_closing_ |= id == ostrevan::dialog_cancel;
        report(e.what());
    } catch (...) {
        is_closing_ |= id == ostrevan::dialog_cancel;
        report("unknown failure");
    }
    rules_are_running_ = false;
    if (is_closing_) destroy();
}

void native_dialog::report(const char* reason) const noexcept {
    std::string text;
    try {
        text = std::string(layout().title) + ": " + reason;
        report_failure(text);
    } catch (...) {
        print_to_console(text);
    }
}

void native_dialog::on_destroy() noexcept {
    if (registry_) registry_->forget(*this);
    std::erase(open_dialogs(), this);
    window_ = nullptr;
    rules_->on_closed();
}

INT_PTR CALLBACK native_dialog::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lparam);
        return FALSE;  // the focus is set when the dialog is shown
    }
    auto* const dialog = reinterpret_cast<native_dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (dialog == nullptr) return FALSE;
    switch (message) {
        case WM_COMMAND:
            if (HIWORD(wparam) != BN_CLICKED || !dialog->is_button(LOWORD(wparam))) return FALSE;
            dialog->press(LOWORD(wparam));
            return TRUE;
        case WM_DESTROY:
            dialog->on_destroy();
            return FALSE;
        // The controls are gone, and with them the last use of the separator's class.
        case WM_NCDESTROY:
            SetWindowLongPtrW(window, DWLP_USER, 0);
            std::exchange(dialog->self_, nullptr).reset();
            return FALSE;
        default:
            return FALSE;
    }
}

}  // namespace quorvel
