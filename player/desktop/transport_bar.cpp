#include "player/desktop/transport_bar.h"

#include <QActionGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QSlider>
#include <QStyle>
#include <QToolButton>
#include <utility>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {
namespace {

using playback::action;

/// A click moves there at once.
class place_slider final : public QSlider {
public:
    using QSlider::QSlider;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() != Qt::LeftButton) return QSlider::mousePressEvent(event);
        const int along = layoutDirection() == Qt::RightToLeft ? width() - event->pos().x() : event->pos().x();
        setSliderPosition(QStyle::sliderValueFromPosition(minimum(), maximum(), along, width()));
        QSlider::mousePressEvent(event);  // which now hits the handle, to be moved further
    }
};

}  // namespace

transport_bar::transport_bar() : QToolBar(QStringLiteral("Playback")) {
    setObjectName(QStringLiteral("playback"));
    setMovable(false);
    previous_ =
        add_button(QStyle::SP_MediaSkipBackward, QStringLiteral("Previous track"), [this] { ask(action::previous); });
    play_ = add_button(QStyle::SP_MediaPlay, QStringLiteral("Play"), [this] {
        if (is_playing_) ask(action::toggle_pause);
        else on_play();
    });
    stop_ = add_button(QStyle::SP_MediaStop, QStringLiteral("Stop"), [this] { ask(action::quit); });
    next_ = add_button(QStyle::SP_MediaSkipForward, QStringLiteral("Next track"), [this] { ask(action::next); });
    auto* const shown = new QWidget(this);
    auto* const level = new QHBoxLayout(shown);
    constexpr int wide = 3, narrow = 2;
    title_ = new QLabel(shown);
    title_->setTextFormat(Qt::PlainText);
    title_->setMinimumWidth(0);
    title_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    level->addWidget(title_, wide);
    passed_ = new QLabel(shown);
    level->addWidget(passed_);
    place_ = new place_slider(Qt::Horizontal, shown);
    place_->setAccessibleName(QStringLiteral("Position"));
    place_->setMinimumWidth(fontMetrics().averageCharWidth() * 20);
    connect(place_, &QSlider::sliderReleased, this, [this] { ask(action::seek_to, place_->sliderPosition()); });
    connect(place_, &QSlider::actionTriggered, this, [this](int kind) {
        if (kind != QAbstractSlider::SliderMove) ask(action::seek_to, place_->sliderPosition());
    });
    level->addWidget(place_, narrow);
    length_ = new QLabel(shown);
    level->addWidget(length_);
    addWidget(shown);
    shuffle_ = add_modes(QStringLiteral("Shuffle"), action::set_shuffle, {"Off", "Tracks", "Albums"});
    repeat_ = add_modes(QStringLiteral("Repeat"), action::set_repeat, {"Off", "Track", "List"});
    volume_ = new QSlider(Qt::Horizontal, this);
    constexpr int loudest = 100;
    volume_->setRange(0, loudest);
    volume_->setValue(loudest);
    volume_->setAccessibleName(QStringLiteral("Volume"));
    volume_->setToolTip(QStringLiteral("Volume"));
    volume_->setMaximumWidth(fontMetrics().averageCharWidth() * 14);
    connect(volume_, &QSlider::valueChanged, this, [this](int percent) { ask(action::set_volume, percent); });
    addWidget(volume_);
    show_stopped();
}

QToolButton* transport_bar::add_button(int icon, const QString& name, std::function<void()> pressed) {
    auto* const button = new QToolButton(this);
    button->setIcon(style()->standardIcon(static_cast<QStyle::StandardPixmap>(icon)));
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::clicked, this, std::move(pressed));
    addWidget(button);
    return button;
}

QToolButton* transport_bar::add_modes(const QString& name, action set, std::initializer_list<const char*> modes) {
    auto* const button = new QToolButton(this);
    button->setText(name);
    button->setAccessibleName(name);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setFocusPolicy(Qt::TabFocus);
    auto* const menu = new QMenu(button);
    auto* const group = new QActionGroup(menu);
    for (const auto* const mode : modes) {
        auto* const entry = menu->addAction(QString::fromLatin1(mode));
        entry->setCheckable(true);
        const auto number = static_cast<double>(menu->actions().size() - 1);
        group->addAction(entry);
        connect(entry, &QAction::triggered, this, [this, set, number] { ask(set, number); });
    }
    button->setMenu(menu);
    addWidget(button);
    return button;
}

void transport_bar::ask(action what, double amount) {
    if (on_request && is_playing_) on_request({what, amount});
}

void transport_bar::show_playing(const app::now_playing& now, const playback::play_status& status) {
    is_playing_ = true;
    is_paused_ = status.is_paused;
    play_->setIcon(style()->standardIcon(is_paused_ ? QStyle::SP_MediaPlay : QStyle::SP_MediaPause));
    play_->setToolTip(is_paused_ ? QStringLiteral("Go on") : QStringLiteral("Pause"));
    for (auto* const each : std::initializer_list<QWidget*>{previous_, stop_, next_, shuffle_, repeat_, volume_})
        each->setEnabled(true);
    passed_->setText(time_text(now.position));
    length_->setText(now.duration > 0 ? time_text(now.duration) : QString());
    place_->setEnabled(now.duration > 0);
    if (!place_->isSliderDown()) {
        place_->setRange(0, static_cast<int>(now.duration));
        place_->setValue(static_cast<int>(now.position));
    }
    const QSignalBlocker quiet(volume_);
    if (!volume_->isSliderDown()) volume_->setValue(static_cast<int>(status.volume));
    const auto& modes = status.order.modes();
    shuffle_->menu()->actions()[static_cast<qsizetype>(modes.shuffle)]->setChecked(true);
    repeat_->menu()->actions()[static_cast<qsizetype>(modes.repeat)]->setChecked(true);
    const auto mark = [](QToolButton* button, const char* name, bool is_on) {
        auto font = button->font();
        font.setBold(is_on);
        button->setFont(font);
        button->setToolTip(QString::fromLatin1(name) + QStringLiteral(": ") + [&] {
            for (const auto* const each : button->menu()->actions())
                if (each->isChecked()) return each->text().toLower();
            return QString();
        }());
    };
    mark(shuffle_, "Shuffle", modes.shuffle != playback::shuffle_mode::off);
    mark(repeat_, "Repeat", modes.repeat != playback::repeat_mode::off);
}

void transport_bar::show_stopped() {
    is_playing_ = false;
    play_->setIcon(style()->standardIcon(QStyle::SP_MediaPlay));
    play_->setToolTip(QStringLiteral("Play"));
    for (auto* const each : std::initializer_list<QWidget*>{previous_, stop_, next_, shuffle_, repeat_, volume_, place_})
        each->setEnabled(false);
    place_->setValue(0);
    passed_->setText({});
    length_->setText({});
    show_title({});
}

void transport_bar::show_title(const QString& title) {
    title_->setText(title);
    title_->setToolTip(title);
}

}  // namespace ostrevan::desktop
