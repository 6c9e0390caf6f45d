#include "player/desktop/file_question.h"

#include <utility>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {
namespace {

/// "XML files|*.xml|All files|*" as "XML files (*.xml)", "All files (*)". Qt separates patterns by blanks.
QStringList filters_of(const std::string& filter) {
    const auto parts = QString::fromStdString(filter).split(QLatin1Char('|'));
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters << parts[i] + QStringLiteral(" (") + QString(parts[i + 1]).replace(QLatin1Char(';'), QLatin1Char(' ')) +
                       QLatin1Char(')');
    return filters;
}

}  // namespace

QFileDialog* make_file_question(QWidget& window, file_dialog_service::query_t query) {
    auto* const box = new QFileDialog(&window, line_of(query.title));
    box->setModal(false);
    box->setNameFilters(filters_of(query.filter));
    box->setDefaultSuffix(QString::fromStdString(query.default_extension));
    box->setAcceptMode(query.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    box->setFileMode(query.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    QObject::connect(box, &QDialog::finished, box, [box, reply = std::move(query.reply)](int result) {
        const auto chosen = box->selectedFiles();
        if (!reply) return;
        if (result == QDialog::Accepted && !chosen.isEmpty()) reply(chosen.front().toLocal8Bit().toStdString());
        else reply(std::nullopt);
    });
    return box;
}

}  // namespace ostrevan::desktop
