#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QMessageBox>
#include <clocale>
#include <exception>

#include "player/core/profile_folder.h"
#include "player/desktop/application.h"
#include "player/desktop/hand_over.h"
#include "player/desktop/qt_text.h"
#include "player/system/default_folders.h"
#include "player/system/failure_text.h"
#include "player/system/interrupt.h"
#include "player/system/standard_streams.h"

namespace ostrevan::desktop {
namespace {

window_options parse(const QCoreApplication& program) {
    const QCommandLineOption profile(QStringLiteral("profile"), QStringLiteral("Folder of all data"), QStringLiteral("DIR"),
                                     QFile::decodeName(system::default_profile().c_str()));
    const QCommandLineOption components(QStringLiteral("components"), QStringLiteral("Folder with the components"),
                                        QStringLiteral("DIR"), QFile::decodeName(system::default_components().c_str()));
    const QCommandLineOption audio(QStringLiteral("audio"), QStringLiteral("auto: the sound device; null: none"),
                                   QStringLiteral("OUTPUT"), QStringLiteral("auto"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The window of the player ostrevan."));
    parser.addHelpOption();
    parser.addOptions({profile, components, audio});
    parser.process(program);
    const auto place = [&](const QCommandLineOption& option) {
        return QFile::encodeName(parser.value(option)).toStdString();
    };
    return {.profile = place(profile),
            .components = place(components),
            .more_components = place(components) == system::default_components() ? system::own_components() : std::string(),
            .audio = parser.value(audio) == QStringLiteral("null") ? playback::audio_output::null
                                                                   : playback::audio_output::automatic};
}

int run(const window_options& options) {
    auto lock = take_profile(core::prepare_profile(options.profile));
    if (!lock) return terminal::exit_declined;
    application player(options, std::move(*lock));
    return QApplication::exec();
}

}  // namespace
}  // namespace ostrevan::desktop

int main(int count, char** values) {
    using namespace ostrevan;
    system::open_missing_streams();
    system::handle_interrupts();
    QApplication program(count, values);
    QApplication::setApplicationName(QStringLiteral("ostrevan"));
    // Qt has taken the numbers of the user's language; libmpv refuses any but those of C.
    std::setlocale(LC_NUMERIC, "C");
    try {
        return desktop::run(desktop::parse(program));
    } catch (const std::exception& error) {
        QMessageBox::critical(nullptr, QStringLiteral("ostrevan"), desktop::text_of(system::failure_text(error)));
        return terminal::exit_failed;
    }
}
