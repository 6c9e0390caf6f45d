#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "player/view/track_listing.h"

namespace ostrevan::view {

/// The texts of the rows on the screen, formatted on a thread of its own, because the tags of a track may still be on the
/// disk. Keeps those around the row asked for last.
class formatted_rows {
public:
    using texts = std::vector<std::string>;

    /// `on_ready` is called on that thread when rows have been formatted.
    explicit formatted_rows(std::function<void()> on_ready);
    ~formatted_rows();
    formatted_rows(const formatted_rows&) = delete;
    formatted_rows& operator=(const formatted_rows&) = delete;

    void show(std::shared_ptr<const track_listing> listing);
    /// The values have changed: formats again the rows that are asked for. Meanwhile they keep their texts.
    void renew();
    /// One text per column; null until the row is formatted.
    [[nodiscard]] std::shared_ptr<const texts> find(std::size_t row);

private:
    struct kept_row {
        std::shared_ptr<const texts> shown;
        std::uint64_t edition = 0;
    };
    void run();
    void drop_far_from(std::size_t row);

    const std::function<void()> on_ready_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::shared_ptr<const track_listing> listing_;
    std::uint64_t edition_ = 0;
    std::map<std::size_t, kept_row> rows_;
    std::set<std::size_t> wanted_;
    bool is_ending_ = false;
    std::thread thread_;
};

}  // namespace ostrevan::view
