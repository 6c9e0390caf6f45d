#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ostrevan/dialog.h"
#include "ostrevan/file_dialog.h"
#include "player/core/main_loop.h"
#include "player/front/front_end.h"

namespace ostrevan::front {

/// Dialogs for components. An open one gets turn after turn of the main loop until it is closed, so that what its rules
/// post, such as a message, comes in between.
class dialog_service_impl : public dialog_service {
public:
    dialog_service_impl(main_loop& loop, front_end& ui, dialog_registry& registry, player_api& player)
        : loop_(loop), ui_(ui), registry_(registry), player_(player) {}
    void open(dialog_rules_ptr rules) override;

private:
    void take_turn(const std::shared_ptr<open_dialog>& dialog, unsigned turn);

    main_loop& loop_;
    front_end& ui_;
    dialog_registry& registry_;
    player_api& player_;
};

/// Questions for files. A name for saving gets the default extension, and what would be replaced is asked for.
class file_dialog_service_impl : public file_dialog_service {
public:
    file_dialog_service_impl(const main_loop& loop, front_end& ui) : loop_(loop), ui_(ui) {}
    std::optional<std::string> ask(const query_t& query) override;

private:
    const main_loop& loop_;
    front_end& ui_;
};

}  // namespace ostrevan::front
