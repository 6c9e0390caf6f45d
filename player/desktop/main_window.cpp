#include "player/desktop/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStatusBar>
#include <utility>

#include "player/desktop/library_page.h"
#include "player/desktop/menus.h"
#include "player/desktop/message_panel.h"
#include "player/desktop/now_playing_link.h"
#include "player/desktop/progress_line.h"
#include "player/desktop/qt_text.h"
#include "player/desktop/transport_bar.h"
#include "player/desktop/window_front_end.h"
#include "player/view/context_menu.h"
#include "player/view/main_menu.h"

namespace ostrevan::desktop {
namespace {

constexpr const char* geometry_name = "window geometry";
constexpr const char* parts_name = "window parts";
const auto program_name = QStringLiteral("ostrevan");

std::string kept_bytes(const QByteArray& bytes) { return bytes.toBase64().toStdString(); }
QByteArray bytes_of(const std::string& text) { return QByteArray::fromBase64(QByteArray::fromStdString(text)); }

}  // namespace

/// What there is while the player is.
struct main_window::attached {
    attached(main_window& window, app::session& of, window_front_end& shown, playback::audio_output audio)
        : player(of),
          ui(shown),
          kept(of.loop, of.profile() + "/window.json"),
          commands(of, shown, audio),
          playing(of, *window.transport_) {}

    app::session& player;
    window_front_end& ui;
    app::kept_texts kept;
    app::user_commands commands;
    now_playing_link playing;
    library_page* page = nullptr;
};

main_window::main_window()
    : messages_(new message_panel(this)),
      progress_(new progress_line),
      shown_count_(new QLabel),
      selected_count_(new QLabel),
      transport_(new transport_bar) {
    setWindowTitle(program_name);
    constexpr int letters = 130, lines = 40;
    resize(fontMetrics().averageCharWidth() * letters, fontMetrics().height() * lines);
    addToolBar(transport_);
    addDockWidget(Qt::BottomDockWidgetArea, messages_);
    statusBar()->setContentsMargins(fontMetrics().averageCharWidth(), 0, 0, 0);
    statusBar()->addWidget(shown_count_);
    statusBar()->addWidget(selected_count_);
    statusBar()->addPermanentWidget(progress_);
}

main_window::~main_window() = default;

void main_window::attach(app::session& player, window_front_end& ui, playback::audio_output audio) {
    player_ = std::make_unique<attached>(*this, player, ui, audio);
    auto* const page = player_->page = new library_page(player, player_->kept);
    setCentralWidget(page);
    page->on_add_folder = [this] { choose_folder(); };
    page->on_activated = [this](std::size_t row) { play(row); };
    page->on_menu = [this](const QPoint& place) { show_track_menu(place); };
    page->on_cell = [this](const view::column& column, const metadb_handle_ptr& track, double place) {
        const auto tracks = std::make_shared<const metadb_handle_list>(std::vector{track});
        player_->commands.run_on(tracks, column.name, [tracks, place, click = column.click] { click(place, *tracks); });
    };
    page->on_counts = [this](const QString& shown, const QString& selected) {
        shown_count_->setText(shown);
        selected_count_->setText(selected);
    };
    transport_->on_request = [this](playback::request wanted) { player_->player.playing.perform(wanted); };
    transport_->on_play = [this] { play_or_go_on(); };
    player_->playing.on_failed = [this](const std::string& text) {
        expect_failure();
        add_line(text);
    };
    player_->playing.on_track = [this](const metadb_handle_ptr& track, const QString& title) {
        setWindowTitle(title.isEmpty() ? program_name : title + QStringLiteral(" - ") + program_name);
        player_->page->mark(track);
    };
    progress_->on_stop = [this](const core::job_ptr& of) {
        of->stop() = true;
        player_->ui.decline(of);
    };
    make_menus();
    restoreGeometry(bytes_of(player_->kept.get(geometry_name)));
    restoreState(bytes_of(player_->kept.get(parts_name)));
}

void main_window::detach() {
    if (!player_) return;
    player_->page->keep_layout();
    player_->kept.set(geometry_name, kept_bytes(saveGeometry()));
    player_->kept.set(parts_name, kept_bytes(saveState()));
    player_->player.playing.perform({playback::action::quit});
    player_->commands.stop_all();
    player_->ui.decline_all();
    player_->ui.leave_window();
    player_->player.run_until_idle();
    menuBar()->clear();
    delete takeCentralWidget();
    player_.reset();
}

void main_window::make_menus() {
    auto& library = *menuBar()->addMenu(QStringLiteral("&Library"));
    connect(&library, &QMenu::aboutToShow, this, [this, &library] { fill_library_menu(library); });
    auto& playback = *menuBar()->addMenu(QStringLiteral("&Playback"));
    const auto add = [this](QMenu& menu, const QString& text, const QKeySequence& key, auto work) {
        auto* const action = menu.addAction(text);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, work);
    };
    const auto ask = [this](playback::action what, double amount = 0) {
        return [this, what, amount] { player_->player.playing.perform({what, amount}); };
    };
    using playback::action;
    constexpr double step = 10;
    add(playback, QStringLiteral("&Play or pause"), QKeySequence(QStringLiteral("Ctrl+P")), [this] {
        if (player_->player.playing.now()) player_->player.playing.perform({action::toggle_pause});
        else play_or_go_on();
    });
    add(playback, QStringLiteral("Pre&vious track"), QKeySequence(QStringLiteral("Ctrl+Left")), ask(action::previous));
    add(playback, QStringLiteral("&Next track"), QKeySequence(QStringLiteral("Ctrl+Right")), ask(action::next));
    add(playback, QStringLiteral("&Stop"), QKeySequence(QStringLiteral("Ctrl+.")), ask(action::quit));
    playback.addSeparator();
    add(playback, QStringLiteral("10 seconds &back"), QKeySequence(QStringLiteral("Alt+Left")), ask(action::seek_by, -step));
    add(playback, QStringLiteral("10 seconds &on"), QKeySequence(QStringLiteral("Alt+Right")), ask(action::seek_by, step));
    add(playback, QStringLiteral("&Louder"), QKeySequence(QStringLiteral("Ctrl+Up")), ask(action::change_volume, step / 2));
    add(playback, QStringLiteral("Sof&ter"), QKeySequence(QStringLiteral("Ctrl+Down")),
        ask(action::change_volume, -step / 2));
    auto& view = *menuBar()->addMenu(QStringLiteral("&View"));
    add(view, QStringLiteral("&Find"), QKeySequence::Find, [this] { player_->page->focus_find(); });
    add(view, QStringLiteral("Whole &library"), QKeySequence(QStringLiteral("Ctrl+L")),
        [this] { player_->page->show_library(); });
    view.addAction(messages_->toggleViewAction());
}

void main_window::fill_library_menu(QMenu& menu) {
    menu.clear();
    const auto add = [&](const QString& text, const QKeySequence& key, auto work) {
        auto* const action = menu.addAction(text);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, work);
    };
    add(QStringLiteral("&Add a music folder..."), {}, [this] { choose_folder(); });
    add(QStringLiteral("&Look for changes"), QKeySequence::Refresh, [this] { player_->commands.rescan(); });
    menu.addSeparator();
    auto& player = player_->player;
    const command_runner runner = [this](const std::string& path, std::function<void()> run) {
        player_->commands.run(path, std::move(run));
    };
    for (const auto& top : view::main_menu_of(player.components, player.services.guard()))
        fill_menu(menu, top.text == "Library" ? top.children : std::vector{top}, runner, top.text);
    menu.addSeparator();
    add(QStringLiteral("&Quit"), QKeySequence::Quit, [this] { close(); });
}

void main_window::show_track_menu(const QPoint& place) {
    const auto tracks = std::make_shared<const metadb_handle_list>(player_->page->selected());
    if (tracks->empty()) return;
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* const first = menu->addAction(QStringLiteral("&Play"));
    connect(first, &QAction::triggered, this, [this, tracks] {
        if (tracks->get_count() == 1) play(player_->page->current_row());
        else player_->commands.play(*tracks, 0);
    });
    menu->setDefaultAction(first);
    menu->addSeparator();
    const command_runner runner = [this, tracks](const std::string& path, std::function<void()> run) {
        player_->commands.run_on(tracks, path, std::move(run));
    };
    fill_menu(*menu, view::context_menu_for(player_->player.services, *tracks), runner);
    menu->popup(place);
}

void main_window::choose_folder() {
    auto* const box = new QFileDialog(this, QStringLiteral("Add a music folder"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setFileMode(QFileDialog::Directory);
    box->setOption(QFileDialog::ShowDirsOnly);
    box->setDirectory(QStandardPaths::writableLocation(QStandardPaths::MusicLocation));
    connect(box, &QFileDialog::fileSelected, this,
            [this](const QString& folder) { player_->commands.add_folders({QFile::encodeName(folder).toStdString()}); });
    box->setModal(false);
    box->show();
}

void main_window::play(std::size_t first) { player_->commands.play(player_->page->shown(), first); }

void main_window::play_or_go_on() {
    player_->commands.play_again([this] { play(player_->page->current_row()); });
}

void main_window::add_line(const std::string& line) {
    messages_->add(text_of(line), std::exchange(is_failure_expected_, false));
}

void main_window::show_listing(const view::track_listing& listing) {
    if (player_) player_->page->show_listing(listing);
}

void main_window::show_progress(const core::job_ptr& of, const std::string& what, std::size_t done, std::size_t total) {
    progress_->show_progress(of, what, done, total);
}

void main_window::end_progress(const core::job_ptr& of) { progress_->end_progress(of); }

void main_window::closeEvent(QCloseEvent* event) {
    if (closes_anyway_ || !player_ || !player_->commands.are_under_way()) return event->accept();
    event->ignore();
    auto* const box = new QMessageBox(QMessageBox::Question, program_name,
                                      QStringLiteral("A command is still under way. Stop it, and close the window?"),
                                      QMessageBox::Yes | QMessageBox::No, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    connect(box, &QMessageBox::accepted, this, [this] {
        closes_anyway_ = true;
        close();
    });
    box->setModal(false);
    box->show();
}

}  // namespace ostrevan::desktop
