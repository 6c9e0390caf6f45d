#pragma once

#include <QWidget>
#include <functional>

#include "player/app/kept_texts.h"
#include "player/app/session.h"
#include "player/core/latest_work.h"
#include "player/view/list_request.h"

class QLabel;
class QLineEdit;
class QStackedLayout;

namespace ostrevan::desktop {

class first_steps;
class track_table;

/// The library as one list: finds, sorts, counts.
class library_page final : public QWidget, private app::change_watcher {
public:
    library_page(app::session& player, app::kept_texts& kept);
    ~library_page() override;

    /// Instead of the whole library.
    void show_listing(const view::track_listing& listing);
    void show_library();
    void mark(const metadb_handle_ptr& playing);
    void focus_find();
    [[nodiscard]] metadb_handle_list shown() const;
    [[nodiscard]] metadb_handle_list selected() const;
    [[nodiscard]] std::size_t current_row() const;
    /// Keeps columns and order for the next start.
    void keep_layout();

    std::function<void()> on_add_folder;
    /// Plays the list from this row on.
    std::function<void(std::size_t row)> on_activated;
    std::function<void(const QPoint& place)> on_menu;
    /// A click into the cell of a track.
    std::function<void(const view::column& column, const metadb_handle_ptr& track, double place)> on_cell;
    /// The counts of what is shown and selected.
    std::function<void(const QString& shown, const QString& selected)> on_counts;

private:
    void on_library_changed() override { refresh(); }
    void on_values_changed() override;
    /// Makes the list again, now or after the one that is being made.
    void refresh();
    void request_list();
    void show_made(metadb_handle_list tracks);
    void sort(const std::string& column);
    void show_sort_mark();
    void count_selected();
    void tell_counts();
    void say_mistake(const QString& text);
    void restore_layout();

    app::session& player_;
    app::kept_texts& kept_;
    view::list_request request_;
    QLineEdit* find_;
    QLabel* mistake_;
    QWidget* listing_bar_;
    QLabel* listing_name_;
    track_table* table_;
    first_steps* steps_;
    QStackedLayout* stack_;
    QString shown_text_, selected_text_;
    bool is_outdated_ = false;
    core::latest_work making_, measuring_, measuring_selected_;
};

}  // namespace ostrevan::desktop
