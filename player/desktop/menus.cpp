#include "player/desktop/menus.h"

#include <QActionGroup>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {

void fill_menu(QMenu& menu, const std::vector<view::menu_entry>& entries, const command_runner& runner,
               const std::string& path) {
    menu.setToolTipsVisible(true);
    QActionGroup* radio_marks = nullptr;
    for (const auto& entry : entries) {
        const auto here = path.empty() ? entry.text : path + "/" + entry.text;
        if (!entry.run) {
            auto* const below = menu.addMenu(label_of(entry.text));
            below->setEnabled(entry.is_enabled);
            fill_menu(*below, entry.children, runner, here);
            continue;
        }
        auto* const action = menu.addAction(label_of(entry.text));
        action->setEnabled(entry.is_enabled);
        if (!entry.description.empty()) {
            action->setToolTip(text_of(entry.description));
            action->setStatusTip(line_of(entry.description));
        }
        action->setCheckable(entry.is_checked || entry.is_radio);
        if (entry.is_radio) {  // drawn as a radio button
            if (radio_marks == nullptr) radio_marks = new QActionGroup(&menu);
            radio_marks->addAction(action);
        }
        action->setChecked(entry.is_checked);
        QObject::connect(action, &QAction::triggered, action, [here, run = entry.run, runner] { runner(here, run); });
    }
}

}  // namespace ostrevan::desktop
