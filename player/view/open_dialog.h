#pragma once

#include <vector>

#include "ostrevan/component.h"
#include "ostrevan/dialog.h"
#include "player/core/main_loop.h"

namespace ostrevan::view {

/// An open dialog: the state of its controls, and its rules. [main-thread]
class open_dialog final : public dialog_window, public registered_dialog {
public:
    /// Registers itself while it lives.
    open_dialog(dialog_rules_ptr rules, core::main_loop& loop, dialog_registry& registry, player_api& player);
    ~open_dialog();
    open_dialog(const open_dialog&) = delete;
    open_dialog& operator=(const open_dialog&) = delete;

    /// For a front end on a thread of its own. [any-thread]
    [[nodiscard]] core::main_loop& loop() const noexcept { return loop_; }
    [[nodiscard]] const dialog_layout& layout() const noexcept { return rules_->layout(); }
    [[nodiscard]] bool is_open() const noexcept { return is_open_; }
    [[nodiscard]] bool is_enabled(int id) const { return states_[index_of(id)].is_enabled; }
    /// Presses a button and leaves the rest to the rules. What they throw arrives with the component's name.
    void press(int button);

    [[nodiscard]] bool is_checked(int id) const override { return states_[index_of(id)].is_checked; }
    void set_checked(int id, bool checked) override;
    void set_enabled(int id, bool enabled) override { states_[index_of(id)].is_enabled = enabled; }
    void close() override { is_open_ = false; }
    /// Nothing to do: there is one at a time.
    void bring_forward() override {}

private:
    struct state {
        bool is_checked = false;
        bool is_enabled = true;
    };
    /// A bug check when the layout has no such control.
    [[nodiscard]] std::size_t index_of(int id) const;

    const dialog_rules_ptr rules_;
    core::main_loop& loop_;
    dialog_registry& registry_;
    player_api& player_;
    std::vector<state> states_;
    bool is_open_ = true;
};

}  // namespace ostrevan::view
