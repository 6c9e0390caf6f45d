#pragma once

#include <QFileDialog>

#include "ostrevan/file_dialog.h"

namespace ostrevan::desktop {

/// Asks for a file. Replies once.
QFileDialog* make_file_question(QWidget& window, file_dialog_service::query_t query);

}  // namespace ostrevan::desktop
