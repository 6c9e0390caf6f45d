#include "player/view/formatted_rows.h"

#include <utility>

namespace ostrevan::view {
namespace {

/// A few screens in each direction.
constexpr std::size_t reach = 400;

}  // namespace

formatted_rows::formatted_rows(std::function<void()> on_ready)
    : on_ready_(std::move(on_ready)), thread_([this] { run(); }) {}

formatted_rows::~formatted_rows() {
    {
        const std::lock_guard lock(mutex_);
        is_ending_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void formatted_rows::show(std::shared_ptr<const track_listing> listing) {
    const std::lock_guard lock(mutex_);
    listing_ = std::move(listing);
    ++edition_;
    rows_.clear();
    wanted_.clear();
}

void formatted_rows::renew() {
    const std::lock_guard lock(mutex_);
    ++edition_;
}

std::shared_ptr<const formatted_rows::texts> formatted_rows::find(std::size_t row) {
    const std::lock_guard lock(mutex_);
    const auto found = rows_.find(row);
    if (found != rows_.end() && found->second.edition == edition_) return found->second.shown;
    if (wanted_.insert(row).second) {
        drop_far_from(row);
        changed_.notify_one();
    }
    return found == rows_.end() ? nullptr : found->second.shown;
}

void formatted_rows::drop_far_from(std::size_t row) {
    const auto first = row < reach ? 0 : row - reach;
    const auto is_far = [&](std::size_t each) { return each < first || each > row + reach; };
    std::erase_if(wanted_, is_far);
    if (rows_.size() > 2 * reach + 1) std::erase_if(rows_, [&](const auto& each) { return is_far(each.first); });
}

void formatted_rows::run() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return is_ending_ || !wanted_.empty(); });
        if (is_ending_) return;
        const auto row = wanted_.extract(wanted_.begin()).value();
        const auto listing = listing_;
        const auto edition = edition_;
        lock.unlock();
        texts cells;
        if (row < listing->row_count()) listing->format_row(row, cells);
        lock.lock();
        if (listing != listing_) continue;
        rows_[row] = {std::make_shared<const texts>(std::move(cells)), edition};
        if (!wanted_.empty()) continue;
        lock.unlock();
        on_ready_();
        lock.lock();
    }
}

}  // namespace ostrevan::view
