#pragma once

#include <QTableView>
#include <functional>
#include <string>
#include <vector>

#include "player/desktop/track_model.h"

namespace ostrevan::desktop {

/// Draws a track listing, and knows which of its tracks are selected.
class track_table final : public QTableView {
public:
    explicit track_table(std::vector<view::column> columns);

    [[nodiscard]] track_model& rows() noexcept { return model_; }
    /// Selected tracks stay selected, and the row that is scrolled to stays in sight.
    void show_listing(std::shared_ptr<const view::track_listing> listing);
    /// In the order of the list.
    [[nodiscard]] metadb_handle_list selected() const;
    /// Of the current row; 0 when there is none.
    [[nodiscard]] std::size_t current_row() const;

    /// The shown columns with their widths, by identifier, from left to right.
    [[nodiscard]] std::string layout() const;
    /// Back to such a layout. Columns that no longer exist are left out.
    void restore_layout(const std::string& text);
    void show_default_layout();

    /// Double click, or Enter.
    std::function<void(std::size_t row)> on_activated;
    std::function<void()> on_selection;
    /// Into the part of a cell that can be clicked.
    std::function<void(const view::column& column, std::size_t row, double place)> on_cell;
    std::function<void(const std::string& column)> on_sort;
    std::function<void(const QPoint& place)> on_menu;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    [[nodiscard]] int column_with(const std::string& id) const;
    void choose_columns(const QPoint& place);
    void fit_columns();
    void click_cell(const QModelIndex& at, int x);
    void select(const metadb_handle_list& tracks, const metadb_handle_ptr& current);

    track_model model_;
    QPersistentModelIndex pressed_;
    bool is_selecting_ = false;
    bool is_fitted_ = true;
};

}  // namespace ostrevan::desktop
