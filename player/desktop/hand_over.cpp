#include "player/desktop/hand_over.h"

#include <QMessageBox>
#include <QTimer>
#include <exception>

#include "player/desktop/qt_text.h"
#include "player/remote/client.h"
#include "player/remote/socket_place.h"
#include "player/terminal/user_side.h"

namespace ostrevan::desktop {
namespace {

bool may_end(const std::string& holder) {
    QMessageBox box(
        QMessageBox::Question, QStringLiteral("ostrevan"),
        QStringLiteral("Process %1 uses your library: it plays, watches or serves it. End it, so that the window can "
                       "take its place?")
            .arg(line_of(holder)),
        QMessageBox::Yes | QMessageBox::Cancel);
    box.setInformativeText(QStringLiteral("Commands under way there are finished first."));
    return box.exec() == QMessageBox::Yes;
}

/// Its refusal shows as a lock that is not given back.
void ask_to_end(const std::string& profile) {
    const auto place = remote::socket_place::of(profile);
    auto owner = place ? place->connect() : system::descriptor();
    if (!owner) return;
    const auto side = terminal::own_side();
    remote::run_at_owner(
        std::move(owner),
        {.words = {"--profile", profile, "--quiet", "quit"}, .home = side.home, .terminal_kind = side.terminal_kind});
}

}  // namespace

std::optional<core::profile_lock> take_profile(const std::string& profile) {
    auto lock = core::profile_lock::take(profile);
    if (lock || !may_end(core::holder_of(profile))) return lock;
    QString problem;
    try {
        ask_to_end(profile);
    } catch (const std::exception& error) {
        problem = text_of(error.what());
    }
    QMessageBox waiting(QMessageBox::Information, QStringLiteral("ostrevan"),
                        QStringLiteral("Waiting for process %1 to end.").arg(line_of(core::holder_of(profile))),
                        QMessageBox::Cancel);
    waiting.setInformativeText(problem);
    QTimer looks_again;
    constexpr auto often = std::chrono::milliseconds(50);
    QObject::connect(&looks_again, &QTimer::timeout, &waiting, [&] {
        lock = core::profile_lock::take(profile);
        if (lock) waiting.accept();
    });
    looks_again.start(often);
    waiting.exec();
    return lock;
}

}  // namespace ostrevan::desktop
