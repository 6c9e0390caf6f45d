#pragma once

#include <QMenu>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "player/view/menu_tree.h"

namespace ostrevan::desktop {

/// Carries out a command of the player or of a component; `path` names it.
using command_runner = std::function<void(const std::string& path, std::function<void()> run)>;

/// Adds the entries of a component's menu with marks, greyed entries and tips.
void fill_menu(QMenu& menu, const std::vector<view::menu_entry>& entries, const command_runner& runner,
               const std::string& path = {});

}  // namespace ostrevan::desktop
