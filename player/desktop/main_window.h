#pragma once

#include <QMainWindow>
#include <memory>

#include "player/app/kept_texts.h"
#include "player/app/user_commands.h"
#include "player/desktop/shown_parts.h"

class QLabel;

namespace ostrevan::desktop {

class library_page;
class message_panel;
class now_playing_link;
class progress_line;
class transport_bar;
class window_front_end;

/// The window: puts its parts together.
class main_window final : public QMainWindow, public shown_parts {
public:
    main_window();
    ~main_window() override;

    /// The player is there; the front end is the one of this window. Before that, the window is empty.
    void attach(app::session& player, window_front_end& ui, playback::audio_output audio);
    /// Ends everything under way. The window knows nothing of the player any more.
    void detach();

    void add_line(const std::string& line) override;
    void expect_failure() override { is_failure_expected_ = true; }
    void show_listing(const view::track_listing& listing) override;
    void show_progress(const core::job_ptr& of, const std::string& what, std::size_t done, std::size_t total) override;
    void end_progress(const core::job_ptr& of) override;
    QWidget& window() override { return *this; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct attached;
    void make_menus();
    void fill_library_menu(QMenu& menu);
    void show_track_menu(const QPoint& place);
    void choose_folder();
    void play(std::size_t first);
    void play_or_go_on();

    message_panel* messages_;
    progress_line* progress_;
    QLabel* shown_count_;
    QLabel* selected_count_;
    transport_bar* transport_;
    std::unique_ptr<attached> player_;
    bool is_failure_expected_ = false;
    bool closes_anyway_ = false;
};

}  // namespace ostrevan::desktop
