#pragma once

#include <QDockWidget>

class QPlainTextEdit;

namespace ostrevan::desktop {

/// What the player and its components have said.
class message_panel final : public QDockWidget {
public:
    explicit message_panel(QWidget* window);

    /// A failure brings the panel forward.
    void add(const QString& line, bool is_failure);

private:
    QPlainTextEdit* const lines_;
};

}  // namespace ostrevan::desktop
