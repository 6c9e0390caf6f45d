#pragma once

#include <QString>
#include <string>
#include <string_view>

#include "player/terminal/terminal_text.h"

namespace ostrevan::desktop {

/// One line of a tag or a name: control characters and direction marks are shown, not obeyed.
inline QString line_of(std::string_view text) { return QString::fromStdString(terminal::shown_in_one_line(text)); }
/// Likewise; line feeds stay.
inline QString text_of(std::string_view text) { return QString::fromStdString(terminal::shown_on_terminal(text)); }

/// As the text of a menu or a button, where "&" announces a key.
inline QString label_of(std::string_view text) { return line_of(text).replace(QLatin1Char('&'), QLatin1String("&&")); }

/// Hours are left out where there are none.
QString time_text(double seconds);

}  // namespace ostrevan::desktop
