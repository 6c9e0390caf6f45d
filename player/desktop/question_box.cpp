#include "player/desktop/question_box.h"

#include <utility>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {
namespace {

struct answer_buttons {
    unsigned style;
    QMessageBox::StandardButtons shown;
    QMessageBox::StandardButton yes, no;
    unsigned yes_answer, no_answer;
};
constexpr unsigned button_mask = 0xF, icon_mask = 0xF0;
const answer_buttons answer_table[] = {
    {popup_message_v3::style_ok, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok, popup_message_v3::answer_ok,
     popup_message_v3::answer_ok},
    {popup_message_v3::style_ok_cancel, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel,
     popup_message_v3::answer_ok, popup_message_v3::answer_cancel},
    {popup_message_v3::style_yes_no, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No,
     popup_message_v3::answer_yes, popup_message_v3::answer_no},
};

const answer_buttons& answers_of(unsigned style) {
    for (const auto& each : answer_table)
        if (each.style == (style & button_mask)) return each;
    return answer_table[0];
}

QMessageBox::Icon icon_of(unsigned style) {
    switch (style & icon_mask) {
        case popup_message_v3::style_icon_error:
            return QMessageBox::Critical;
        case popup_message_v3::style_icon_warning:
            return QMessageBox::Warning;
        default:
            return (style & button_mask) == popup_message_v3::style_ok ? QMessageBox::Information : QMessageBox::Question;
    }
}

QMessageBox* make_box(QWidget& window, QMessageBox::Icon icon, const std::string& text, const std::string& title,
                      QMessageBox::StandardButtons buttons) {
    auto* const box = new QMessageBox(icon, line_of(title), text_of(text), buttons, &window);
    box->setTextFormat(Qt::PlainText);
    box->setModal(false);
    return box;
}

}  // namespace

QMessageBox* make_question(QWidget& window, popup_message_v3::query_t query) {
    const auto& choice = answers_of(query.style);
    auto* const box = make_box(window, icon_of(query.style), query.text, query.title, choice.shown);
    box->setDefaultButton(choice.yes);
    box->setEscapeButton(choice.no);
    QObject::connect(box, &QDialog::finished, box, [box, &choice, reply = std::move(query.reply)](int) {
        const bool is_yes = box->clickedButton() != nullptr && box->clickedButton() == box->button(choice.yes);
        if (reply) reply(is_yes ? choice.yes_answer : choice.no_answer);
    });
    return box;
}

QMessageBox* make_message(QWidget& window, const std::string& text, const std::string& title, popup_message::icon_t icon) {
    const auto shown = icon == popup_message::icon_error   ? QMessageBox::Critical
                       : icon == popup_message::icon_query ? QMessageBox::Question
                                                           : QMessageBox::Information;
    return make_box(window, shown, text, title, QMessageBox::Ok);
}

}  // namespace ostrevan::desktop
