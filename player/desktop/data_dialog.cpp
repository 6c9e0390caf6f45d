#include "player/desktop/data_dialog.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <exception>
#include <utility>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {

data_dialog::data_dialog(QWidget& window, std::shared_ptr<view::open_dialog> dialog)
    : QDialog(&window), dialog_(std::move(dialog)), busy_(dialog_->loop()) {
    setWindowTitle(line_of(dialog_->layout().title));
    add_controls();
    update_controls();
}

data_dialog::~data_dialog() {
    const core::main_loop::activity::scope scope(busy_);
    dialog_.reset();
}

void data_dialog::add_controls() {
    auto* const whole = new QVBoxLayout(this);
    QBoxLayout* level = whole;
    for (const auto& control : dialog_->layout().controls) {
        if (control.kind == dialog_control_kind::separator) {
            auto* const section = new QGroupBox(label_of(control.text), this);
            whole->addWidget(section);
            level = new QVBoxLayout(section);
        } else if (control.id != dialog_ok && control.id != dialog_cancel) {
            add_control(*level, control);
        }
    }
    auto* const row = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    whole->addWidget(row);
    connect(row, &QDialogButtonBox::accepted, this, [this] { press(dialog_ok); });
    connect(row, &QDialogButtonBox::rejected, this, [this] { press(dialog_cancel); });
    row->button(QDialogButtonBox::Ok)->setDefault(true);
}

void data_dialog::add_control(QBoxLayout& level, const dialog_control& control) {
    QAbstractButton* button = nullptr;
    const auto text = label_of(control.text);
    const int id = control.id;
    if (control.kind == dialog_control_kind::button) {
        button = new QPushButton(text, this);
        static_cast<QPushButton*>(button)->setAutoDefault(false);
        connect(button, &QAbstractButton::clicked, this, [this, id] { press(id); });
    } else {
        if (control.kind == dialog_control_kind::radio_button) button = new QRadioButton(text, this);
        else button = new QCheckBox(text, this);
        connect(button, &QAbstractButton::clicked, this, [this, id, kind = control.kind](bool is_checked) {
            dialog_->set_checked(id, is_checked || kind == dialog_control_kind::radio_button);
            update_controls();
        });
    }
    level.addWidget(button);
    buttons_[id] = button;
}

void data_dialog::press(int id) {
    const core::main_loop::activity::scope scope(busy_);
    try {
        dialog_->press(id);
    } catch (...) {  // reported like every failure of posted work
        dialog_->loop().post([failure = std::current_exception()] { std::rethrow_exception(failure); });
        dialog_->close();
    }
    if (dialog_->is_open()) update_controls();
    else done(id == dialog_ok ? Accepted : Rejected);
}

void data_dialog::reject() {
    if (dialog_->is_open()) press(dialog_cancel);
    if (!dialog_->is_open()) return;
    dialog_->close();
    done(Rejected);
}

void data_dialog::update_controls() {
    for (const auto& [id, button] : buttons_) {
        button->setEnabled(dialog_->is_enabled(id));
        if (button->isCheckable()) button->setChecked(dialog_->is_checked(id));
    }
}

}  // namespace ostrevan::desktop
