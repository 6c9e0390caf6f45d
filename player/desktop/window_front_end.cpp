#include "player/desktop/window_front_end.h"

#include <QApplication>
#include <iostream>

#include "player/desktop/data_dialog.h"
#include "player/desktop/file_question.h"
#include "player/desktop/question_box.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::desktop {

void window_front_end::print_line(const std::string& line) {
    if (has_left_) {
        std::cerr << terminal::shown_on_terminal(line) << '\n';
        return;
    }
    // In the order of the calls, whatever their threads.
    QMetaObject::invokeMethod(
        &parts_.window(), [this, line] { parts_.add_line(line); }, Qt::QueuedConnection);
}

void window_front_end::show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) {
    open(*make_message(parts_.window(), text, title, icon));
}

void window_front_end::ask(popup_message_v3::query_t query) {
    if (core::is_stopping() || has_left_) print_line(query.title + ": " + query.text + " (declined)");
    open(*make_question(parts_.window(), std::move(query)));
}

void window_front_end::ask_file(file_dialog_service::query_t query) {
    open(*make_file_question(parts_.window(), std::move(query)));
}

void window_front_end::show_dialog(std::shared_ptr<view::open_dialog> dialog) {
    open(*new data_dialog(parts_.window(), std::move(dialog)));
}

void window_front_end::open(QDialog& box) {
    std::erase_if(open_, [](const question& each) { return each.box.isNull(); });
    open_.push_back({&box, core::job::current()});
    box.setAttribute(Qt::WA_DeleteOnClose);
    if (!core::is_stopping() && !has_left_) return box.show();
    box.reject();
    box.deleteLater();  // it was never closed
}

void window_front_end::decline(const core::job_ptr& of) {
    for (const auto& each : std::vector(open_))
        if (each.of == of && each.box) each.box->reject();
}

void window_front_end::decline_all() {
    for (const auto& each : std::vector(open_))
        if (each.box) each.box->reject();
}

void window_front_end::beep() { QApplication::beep(); }

}  // namespace ostrevan::desktop
