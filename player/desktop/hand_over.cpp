#include "player/desktop/hand_over.h"

#include <QMessageBox>
#include <QTimer>
#include <exception>

#include "player/desktop/qt_text.h"
#include "player/remote/client.h"
#include "player/remote/socket_place.h"
#include "player/terminal/exit_status.h"
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

/// Returns false when it does not obey: it is only just starting, or carries out a command that ends by itself.
bool ask_to_end(const std::string& profile) {
    const auto place = remote::socket_place::of(profile);
    auto owner = place ? place->connect() : system::descriptor();
    if (!owner) return false;
    const auto side = terminal::own_side();
    const auto status = remote::run_at_owner(
        std::move(owner),
        {.words = {"--profile", profile, "--quiet", "quit"}, .home = side.home, .terminal_kind = side.terminal_kind});
    return status == terminal::exit_done;
}

}  // namespace

std::optional<core::profile_lock> take_profile(const std::string& profile) {
    auto lock = core::profile_lock::take(profile);
    if (lock || !may_end(core::holder_of(profile))) return lock;
    QMessageBox waiting(QMessageBox::Information, QStringLiteral("ostrevan"),
                        QStringLiteral("Waiting for process %1 to end.").arg(line_of(core::holder_of(profile))),
                        QMessageBox::Cancel);
    QTimer looks_again, asks_again;
    QObject::connect(&looks_again, &QTimer::timeout, &waiting, [&] {
        lock = core::profile_lock::take(profile);
        if (lock) waiting.accept();
    });
    const auto ask = [&] {
        try {
            if (ask_to_end(profile)) asks_again.stop();
        } catch (const std::exception& error) {
            waiting.setInformativeText(text_of(error.what()));
        }
    };
    QObject::connect(&asks_again, &QTimer::timeout, &waiting, ask);
    constexpr auto often = std::chrono::milliseconds(50), seldom = std::chrono::milliseconds(500);
    looks_again.start(often);
    asks_again.start(seldom);
    ask();
    waiting.exec();
    return lock;
}

}  // namespace ostrevan::desktop
