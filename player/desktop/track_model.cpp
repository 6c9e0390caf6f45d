#include "player/desktop/track_model.h"

#include <QFont>
#include <utility>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {

track_model::track_model(std::vector<view::column> columns)
    : columns_(std::move(columns)), rows_([this] {
          if (!is_announced_.exchange(true))
              QMetaObject::invokeMethod(
                  this, [this] { announce(); }, Qt::QueuedConnection);
      }) {}

void track_model::announce() {
    is_announced_ = false;
    if (rowCount() != 0) emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

void track_model::show(std::shared_ptr<const view::track_listing> listing) {
    beginResetModel();
    listing_ = std::move(listing);
    rows_.show(listing_);
    endResetModel();
}

void track_model::renew() {
    rows_.renew();
    announce();
}

void track_model::mark(metadb_handle_ptr playing) {
    if (playing_ == playing) return;
    playing_ = std::move(playing);
    announce();
}

int track_model::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !listing_ ? 0 : static_cast<int>(listing_->row_count());
}

int track_model::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

QVariant track_model::text_at(const QModelIndex& index) const {
    const auto texts = rows_.find(static_cast<std::size_t>(index.row()));
    const auto column = static_cast<std::size_t>(index.column());
    return texts && column < texts->size() ? line_of((*texts)[column]) : QString();
}

QVariant track_model::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    switch (role) {
        case Qt::DisplayRole:
        case Qt::ToolTipRole:
            return text_at(index);
        case Qt::TextAlignmentRole: {
            const bool is_right = columns_[static_cast<std::size_t>(index.column())].align_right;
            return QVariant((is_right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
        }
        case Qt::FontRole:
            if (playing_ && listing_->tracks()[static_cast<std::size_t>(index.row())] == playing_) {
                QFont bold;
                bold.setBold(true);
                return bold;
            }
            return {};
        default:
            return {};
    }
}

QVariant track_model::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    const auto& column = columns_[static_cast<std::size_t>(section)];
    if (role == Qt::DisplayRole) return line_of(column.name);
    if (role == Qt::TextAlignmentRole)
        return QVariant((column.align_right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    return {};
}

}  // namespace ostrevan::desktop
