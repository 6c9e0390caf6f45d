#include "quorvel/store/date_added.h"

#include <algorithm>
#include <future>
#include <span>
#include <vector>

#include "quorvel/store/key.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {
namespace {

using key_list = std::vector<std::uint64_t>;

void append_sorted_keys(std::span<const ostrevan::metadb_handle_ptr> tracks, key_list& out) {
    out.reserve(tracks.size());
    for (const auto& track : tracks)
        if (const auto key = ComputeKeyOf(*track); key && *key != 0) out.push_back(*key);
    std::ranges::sort(out);
}

/// Each key once, in ascending order, which is the fastest to look up and to store. A second thread computes half of many.
key_list sorted_keys(std::span<const ostrevan::metadb_handle_ptr> tracks) {
    constexpr std::size_t many = 10'000;
    const std::size_t half = tracks.size() < many ? 0 : tracks.size() / 2;
    key_list first, second;
    auto other = half == 0 ? std::future<void>()
                           : std::async(std::launch::async, [&] { append_sorted_keys(tracks.first(half), first); });
    append_sorted_keys(tracks.subspan(half), second);
    if (other.valid()) other.get();
    key_list all(first.size() + second.size());
    std::ranges::merge(first, second, all.begin());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

}  // namespace

void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now) {
    StatsOp op;
    if (!op.has_index()) return;
    auto undated = sorted_keys(tracks.items());
    std::erase_if(undated, [](std::uint64_t key) { return read_record(key).added != 0; });
    if (undated.empty()) return;
    op.begin();
    for (const std::uint64_t key : undated)
        op.Update(key, [now](t_playback_stats& record) {
            if (record.added == 0) record.added = now;
        });
    op.finish();
}

}  // namespace quorvel
