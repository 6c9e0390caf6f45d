#include "quorvel/store/date_added.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "quorvel/store/index_writer.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// Each key once, in ascending order, as the player stores them fastest.
std::vector<std::uint64_t> keys_without_date(const ostrevan::metadb_handle_list& tracks) {
    std::vector<std::uint64_t> keys;
    for (const auto& track : tracks.items())
        if (const auto key = KeyOfOnce(*track); key && *key != 0 && read_record(*key).added == 0) keys.push_back(*key);
    std::ranges::sort(keys);
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

}  // namespace

void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now) {
    if (opened_index() == nullptr) return;
    auto keys = keys_without_date(tracks);
    if (keys.empty()) return;

    index_writer writer;
    writer.begin();
    std::erase_if(keys, [&](std::uint64_t key) {
        auto record = writer.find(statistics_index_guid, key).value_or(t_playback_stats{});
        if (std::exchange(record.added, record.added == 0 ? now : record.added) != 0) return true;
        writer.write(key, record);
        return false;
    });
    writer.commit();
    refresh_keys(std::move(keys));
}

}  // namespace quorvel
