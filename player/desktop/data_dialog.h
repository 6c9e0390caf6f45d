#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <memory>

#include "player/core/main_loop.h"
#include "player/view/open_dialog.h"

class QAbstractButton;
class QBoxLayout;

namespace ostrevan::desktop {

/// A dialog that a component describes as data. What the user does in it is work of the job that opened it.
class data_dialog final : public QDialog {
public:
    data_dialog(QWidget& window, std::shared_ptr<view::open_dialog> dialog);
    ~data_dialog() override;

    /// Cancels, even where the rules ignore that.
    void reject() override;

private:
    void add_controls();
    void add_control(QBoxLayout& level, const dialog_control& control);
    void press(int id);
    /// Shows the state that the rules have left.
    void update_controls();

    std::shared_ptr<view::open_dialog> dialog_;
    const core::main_loop::activity busy_;
    std::map<int, QAbstractButton*> buttons_;
};

}  // namespace ostrevan::desktop
