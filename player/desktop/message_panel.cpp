#include "player/desktop/message_panel.h"

#include <QPlainTextEdit>

namespace ostrevan::desktop {

message_panel::message_panel(QWidget* window)
    : QDockWidget(QStringLiteral("Messages"), window), lines_(new QPlainTextEdit(this)) {
    constexpr int most_lines = 2000;
    setObjectName(QStringLiteral("messages"));
    lines_->setReadOnly(true);
    lines_->setTabChangesFocus(true);
    lines_->setMaximumBlockCount(most_lines);
    lines_->setAccessibleName(QStringLiteral("Messages"));
    setWidget(lines_);
    hide();
}

void message_panel::add(const QString& line, bool is_failure) {
    lines_->appendPlainText(line);
    if (!is_failure) return;
    show();
    raise();
}

}  // namespace ostrevan::desktop
