#include "player/desktop/application.h"

#include <QApplication>
#include <utility>

#include "player/system/interrupt.h"
#include "player/terminal/user_side.h"

namespace ostrevan::desktop {
namespace {

core::profile_lock after_showing(QWidget& window, core::profile_lock lock) {
    window.show();
    QApplication::processEvents();
    return lock;
}

}  // namespace

application::application(const window_options& options, core::profile_lock lock)
    : screen_(terminal::own_side(), job_, false, {}),
      owner_({options.profile, options.components, false, options.more_components}, after_showing(window_, std::move(lock)),
             ui_, true) {
    owner_.state.is_serving = true;
    bridge_.emplace(owner_.player.loop);
    window_.attach(owner_.player, ui_, options.audio);
    constexpr auto often = std::chrono::milliseconds(100);
    QObject::connect(&looks_for_end_, &QTimer::timeout, &window_, [this] {
        if (owner_.state.is_to_quit || system::interrupted()) QApplication::quit();
    });
    looks_for_end_.start(often);
}

application::~application() {
    looks_for_end_.stop();
    window_.hide();
    bridge_.reset();
    window_.detach();
    auto& loop = owner_.player.loop;
    job_->run_on_own_thread([&, busy = std::make_shared<core::main_loop::activity>(loop)] {
        terminal::run_context own{owner_.player, screen_, screen_.out(), *job_, owner_.state, true};
        owner_.finish(own);
    });
    owner_.player.run_until_idle();
}

}  // namespace ostrevan::desktop
