#pragma once

#include <QMessageBox>
#include <string>

#include "ostrevan/popup.h"

namespace ostrevan::desktop {

/// A question with the buttons and the icon of its style. Replies once; Escape declines.
QMessageBox* make_question(QWidget& window, popup_message_v3::query_t query);

QMessageBox* make_message(QWidget& window, const std::string& text, const std::string& title, popup_message::icon_t icon);

}  // namespace ostrevan::desktop
