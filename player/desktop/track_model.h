#pragma once

#include <QAbstractTableModel>
#include <atomic>
#include <memory>
#include <vector>

#include "player/view/formatted_rows.h"

namespace ostrevan::desktop {

/// The rows of a track listing. Their texts come from another thread, and are empty until then.
class track_model final : public QAbstractTableModel {
public:
    explicit track_model(std::vector<view::column> columns);

    void show(std::shared_ptr<const view::track_listing> listing);
    /// The values of the tracks have changed.
    void renew();
    /// Its rows are bold; null for none.
    void mark(metadb_handle_ptr playing);

    [[nodiscard]] const std::vector<view::column>& columns() const noexcept { return columns_; }
    /// Null before the first listing.
    [[nodiscard]] const std::shared_ptr<const view::track_listing>& listing() const noexcept { return listing_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void announce();
    [[nodiscard]] QVariant text_at(const QModelIndex& index) const;

    const std::vector<view::column> columns_;
    std::shared_ptr<const view::track_listing> listing_;
    metadb_handle_ptr playing_;
    std::atomic<bool> is_announced_ = false;
    mutable view::formatted_rows rows_;
};

}  // namespace ostrevan::desktop
