#include "quorvel/store/date_added.h"

#include <algorithm>
#include <cstddef>
#include <span>
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

/// While a transaction is open a play has to wait, and the main thread with it: a large library takes several. They need not
/// be one, since a track that is stamped stays as it is, and one that is left out is stamped at the next start.
constexpr std::size_t keys_of_transaction = 16'384;

/// One transaction. Adds the keys that were without a date to `stamped`.
void stamp(std::span<const std::uint64_t> keys, std::uint64_t now, std::vector<std::uint64_t>& stamped) {
    index_writer writer;
    writer.begin();
    for (const std::uint64_t key : keys) {
        auto record = writer.read(key);
        if (record.added != 0) continue;
        record.added = now;
        writer.write(key, record);
        stamped.push_back(key);
    }
    writer.commit();
}

}  // namespace

void stamp_dates_added(const ostrevan::metadb_handle_list& tracks, std::uint64_t now) {
    if (opened_index() == nullptr) return;
    const auto keys = keys_without_date(tracks);
    std::vector<std::uint64_t> stamped;
    for (std::span<const std::uint64_t> left = keys; !left.empty();) {
        const auto portion = left.first(std::min(keys_of_transaction, left.size()));
        stamp(portion, now, stamped);
        left = left.subspan(portion.size());
    }
    refresh_keys(std::move(stamped));
}

}  // namespace quorvel
