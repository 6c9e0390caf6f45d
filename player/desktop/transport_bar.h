#pragma once

#include <QToolBar>
#include <functional>

#include "player/app/playing.h"

class QLabel;
class QSlider;
class QToolButton;

namespace ostrevan::desktop {

/// Play, pause, previous, next, seek, volume, shuffle, repeat.
class transport_bar final : public QToolBar {
public:
    transport_bar();

    void show_playing(const app::now_playing& now, const playback::play_status& status);
    void show_stopped();
    /// Names the track.
    void show_title(const QString& title);

    std::function<void(playback::request wanted)> on_request;
    /// Nothing plays yet.
    std::function<void()> on_play;

private:
    QToolButton* add_button(int icon, const QString& name, std::function<void()> pressed);
    QToolButton* add_modes(const QString& name, playback::action set, std::initializer_list<const char*> modes);
    void ask(playback::action what, double amount = 0);

    QToolButton* previous_;
    QToolButton* play_;
    QToolButton* stop_;
    QToolButton* next_;
    QLabel* title_;
    QLabel* passed_;
    QSlider* place_;
    QLabel* length_;
    QToolButton* shuffle_;
    QToolButton* repeat_;
    QSlider* volume_;
    bool is_playing_ = false;
    bool is_paused_ = false;
};

}  // namespace ostrevan::desktop
