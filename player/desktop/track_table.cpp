#include "player/desktop/track_table.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QStyledItemDelegate>
#include <algorithm>
#include <sstream>
#include <unordered_set>
#include <utility>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {
namespace {

/// Shows faintly what an empty cell of the row under the mouse, or of a selected one, can be clicked for.
class cell_drawing final : public QStyledItemDelegate {
public:
    cell_drawing(const track_model& model, QObject* owner) : QStyledItemDelegate(owner), model_(model) {}

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto& clicked = model_.columns()[static_cast<std::size_t>(index.column())].click_text;
        if (!option->text.isEmpty() || clicked.empty()) return;
        if ((option->state & (QStyle::State_MouseOver | QStyle::State_Selected)) == 0) return;
        option->text = line_of(clicked);
        option->features |= QStyleOptionViewItem::HasDisplay;
        option->palette.setBrush(QPalette::Text, option->palette.placeholderText());
    }

private:
    const track_model& model_;
};

constexpr const char* first_columns[] = {"Artist", "Title", "Album", "Length"};

}  // namespace

track_table::track_table(std::vector<view::column> columns) : model_(std::move(columns)) {
    setModel(&model_);
    setItemDelegate(new cell_drawing(model_, this));
    setMouseTracking(true);
    setAccessibleName(QStringLiteral("Tracks"));
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    verticalHeader()->hide();
    // Rows of one height: a list of any length is laid out at once.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
    auto& head = *horizontalHeader();
    head.setSectionsMovable(true);
    head.setSectionsClickable(true);
    head.setHighlightSections(false);
    head.setSortIndicatorShown(false);
    head.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&head, &QHeaderView::sectionClicked, this, [this](int section) {
        if (on_sort) on_sort(model_.columns()[static_cast<std::size_t>(section)].id);
    });
    connect(&head, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& place) { choose_columns(horizontalHeader()->mapToGlobal(place)); });
    connect(this, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& at) {
        if (on_activated) on_activated(static_cast<std::size_t>(at.row()));
    });
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
        if (on_menu) on_menu(viewport()->mapToGlobal(place));
    });
    connect(&model_, &QAbstractItemModel::dataChanged, this, [this] { fit_columns(); });
    show_default_layout();
}

void track_table::keyPressEvent(QKeyEvent* event) {
    const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!is_enter || !currentIndex().isValid()) return QTableView::keyPressEvent(event);
    if (on_activated) on_activated(current_row());
}

void track_table::mousePressEvent(QMouseEvent* event) {
    pressed_ = indexAt(event->pos());
    QTableView::mousePressEvent(event);
}

/// A click ends where it began; a drag selects rows.
void track_table::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    const QModelIndex pressed = std::exchange(pressed_, {});
    if (event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier && pressed.isValid() &&
        pressed == indexAt(event->pos()))
        click_cell(pressed, event->pos().x());
}

void track_table::click_cell(const QModelIndex& at, int x) {
    const auto& column = model_.columns()[static_cast<std::size_t>(at.column())];
    if (!column.click || !on_cell) return;
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    const auto cell = visualRect(at);
    const int width = fontMetrics().horizontalAdvance(line_of(column.click_text));
    const bool is_right = column.align_right != isRightToLeft();
    const int begin = is_right ? cell.right() - margin - width : cell.left() + margin;
    const double along = static_cast<double>(x - begin) / width;
    if (along >= 0 && along <= 1) on_cell(column, static_cast<std::size_t>(at.row()), isRightToLeft() ? 1 - along : along);
}

void track_table::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTableView::selectionChanged(selected, deselected);
    if (!is_selecting_ && on_selection) on_selection();
}

std::size_t track_table::current_row() const { return static_cast<std::size_t>(std::max(currentIndex().row(), 0)); }

metadb_handle_list track_table::selected() const {
    std::vector<int> numbers;
    for (const auto& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row) numbers.push_back(row);
    std::ranges::sort(numbers);
    metadb_handle_list tracks;
    if (!model_.listing()) return tracks;
    tracks.items().reserve(numbers.size());
    for (const auto row : numbers) tracks.items().push_back(model_.listing()->tracks()[static_cast<std::size_t>(row)]);
    return tracks;
}

void track_table::show_listing(std::shared_ptr<const view::track_listing> listing) {
    const auto& before = model_.listing();
    if (before &&
        std::equal(before->tracks().begin(), before->tracks().end(), listing->tracks().begin(), listing->tracks().end()))
        return model_.renew();  // their tags may be others
    const auto chosen = selected();
    const auto current = before && currentIndex().isValid() ? before->tracks()[current_row()] : metadb_handle_ptr();
    is_selecting_ = true;
    model_.show(std::move(listing));
    select(chosen, current);
    is_selecting_ = false;
    if (on_selection) on_selection();
}

void track_table::select(const metadb_handle_list& tracks, const metadb_handle_ptr& current) {
    if (tracks.empty() && !current) return;
    std::unordered_set<const metadb_handle*> wanted;
    for (const auto& track : tracks) wanted.insert(track.get());
    QItemSelection found;
    int first = -1;
    const auto row_of = [this](int row) { return model_.index(row, 0); };
    const auto& shown = model_.listing()->tracks();
    const auto last_column = model_.columnCount() - 1;
    for (int row = 0; row < model_.rowCount(); ++row) {
        const auto& track = shown[static_cast<std::size_t>(row)];
        if (track == current) {
            selectionModel()->setCurrentIndex(row_of(row), QItemSelectionModel::NoUpdate);
            scrollTo(row_of(row));
        }
        if (const bool is_wanted = wanted.contains(track.get()); is_wanted && first < 0) first = row;
        else if (!is_wanted && first >= 0) {
            found.select(row_of(first), model_.index(row - 1, last_column));
            first = -1;
        }
    }
    if (first >= 0) found.select(row_of(first), model_.index(model_.rowCount() - 1, last_column));
    selectionModel()->select(found, QItemSelectionModel::ClearAndSelect);
}

int track_table::column_with(const std::string& id) const {
    const auto found = std::ranges::find(model_.columns(), id, &view::column::id);
    return found == model_.columns().end() ? -1 : static_cast<int>(found - model_.columns().begin());
}

std::string track_table::layout() const {
    std::ostringstream text;
    const auto& head = *horizontalHeader();
    for (int place = 0; place < head.count(); ++place)
        if (const int column = head.logicalIndex(place); !head.isSectionHidden(column))
            text << head.sectionSize(column) << ' ' << model_.columns()[static_cast<std::size_t>(column)].id << '\n';
    return text.str();
}

void track_table::restore_layout(const std::string& text) {
    auto& head = *horizontalHeader();
    is_fitted_ = true;
    std::istringstream lines(text);
    int place = 0;
    for (int column = 0; column < head.count(); ++column) head.hideSection(column);
    constexpr int least = 20, most = 4000;
    int width = 0;
    for (std::string id; lines >> width && lines.ignore() && std::getline(lines, id);) {
        const int column = column_with(id);
        if (column < 0 || !head.isSectionHidden(column)) continue;
        head.showSection(column);
        head.resizeSection(column, std::clamp(width, least, most));
        head.moveSection(head.visualIndex(column), place++);
    }
    if (place == 0) show_default_layout();
}

/// Some of the player's own, then all of the components, wide enough for their headings.
void track_table::show_default_layout() {
    std::ostringstream text;
    const auto letter = fontMetrics().averageCharWidth();
    constexpr int wide = 26, narrow = 14, margin = 4;
    for (const auto* const id : first_columns) {
        const bool is_number =
            column_with(id) >= 0 && model_.columns()[static_cast<std::size_t>(column_with(id))].align_right;
        text << (is_number ? narrow / 2 + margin : wide) * letter << ' ' << id << '\n';
    }
    for (const auto& column : model_.columns())
        if (column.id.starts_with('{'))
            text << std::max(narrow, static_cast<int>(column.name.size()) + margin) * letter << ' ' << column.id << '\n';
    if (column_with(first_columns[0]) >= 0) restore_layout(text.str());
    is_fitted_ = false;
}

/// Widens columns of components, whose texts nobody knows beforehand, for the first ones that are shown.
void track_table::fit_columns() {
    if (std::exchange(is_fitted_, true)) return;
    for (int column = 0; column < model_.columnCount(); ++column)
        if (model_.columns()[static_cast<std::size_t>(column)].id.starts_with('{') && !isColumnHidden(column))
            setColumnWidth(column, std::max(columnWidth(column), sizeHintForColumn(column)));
}

void track_table::choose_columns(const QPoint& place) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (int column = 0; column < model_.columnCount(); ++column) {
        auto* const entry = menu->addAction(label_of(model_.columns()[static_cast<std::size_t>(column)].name));
        entry->setCheckable(true);
        entry->setChecked(!isColumnHidden(column));
        connect(entry, &QAction::triggered, this, [this, column](bool is_shown) {
            // One stays, to click on.
            if (is_shown || horizontalHeader()->count() - horizontalHeader()->hiddenSectionCount() > 1)
                setColumnHidden(column, !is_shown);
        });
    }
    menu->addSeparator();
    connect(menu->addAction(QStringLiteral("&Usual columns")), &QAction::triggered, this, [this] { show_default_layout(); });
    menu->popup(place);
}

}  // namespace ostrevan::desktop
