#include "quorvel/store/migration.h"

#include <algorithm>
#include <compare>
#include <exception>
#include <string>
#include <utility>

#include "quorvel/common/messages.h"
#include "quorvel/store/key.h"
#include "quorvel/store/statistics_index.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {
namespace {

using ostrevan::metadb_handle_ptr;

/// A record under an older mapping, and the key of one of its tracks.
struct older_record {
    std::size_t mapping;  ///< position in the table
    std::uint64_t older_key;
    std::uint64_t key;
    auto operator<=>(const older_record&) const = default;
};

struct older_records {
    /// Each once: merging one twice would average the ratings twice. Sorted: tracks that differ only in what an older
    /// mapping leaves out share a record.
    std::vector<older_record> found;
    std::vector<metadb_handle_ptr> owners;
    std::exception_ptr failure;  ///< of reading one of them
};

older_records find_older_records(const StatsOp& op, ostrevan::metadb_handle_list_cref tracks) {
    older_records result;
    const auto mappings = mapping_guids();
    for (std::size_t i = 0; i < mappings.size(); ++i) {
        if (mappings[i] == active_mapping_guid) continue;
        const auto held = opened_index()->keys(mappings[i]);
        if (held.empty()) continue;
        const auto key_function = FindMapping(mappings[i]);
        for (const auto& track : tracks) {
            const auto snapshot = track->info();
            if (!snapshot) continue;
            const std::uint64_t older_key = key_function->key_of(snapshot->info(), track->location());
            if (!std::ranges::binary_search(held, older_key)) continue;
            try {
                if (!op.Find(mappings[i], older_key)) continue;
            } catch (const std::exception&) {  // reported when the tracks of all others are known
                result.failure = std::current_exception();
            }
            const auto key = KeyOf(snapshot->info(), track->location());
            if (!key || *key == 0) continue;
            result.found.push_back({i, older_key, *key});
            result.owners.push_back(track);
        }
    }
    std::ranges::sort(result.found);
    // clang 14 does not compile the ranges' form of it.
    result.found.erase(std::unique(result.found.begin(), result.found.end()), result.found.end());
    return result;
}

/// Removes an older record only after it has been merged, which matters without transactions.
void take_over(StatsOp& op, const std::vector<older_record>& found) {
    for (auto next = found.begin(); next != found.end();) {
        const auto [mapping, older_key, first_key] = *next;
        const auto& index = mapping_guids()[mapping];
        const auto record = op.Find(index, older_key).value_or(t_playback_stats{});
        for (; next != found.end() && next->mapping == mapping && next->older_key == older_key; ++next)
            op.MergeStats(next->key, record, MergeType::MergeMax);
        op.Remove(index, older_key);
    }
    op.finish();
}

}  // namespace

bool may_hold_older_records() noexcept {
    const auto* const index = opened_index();
    if (index == nullptr) return false;
    try {
        return std::ranges::any_of(mapping_guids(), [&](const nuv::guid& mapping) {
            return mapping != active_mapping_guid && !index->keys_from(mapping, 0, 1).empty();
        });
    } catch (...) {
        return true;
    }
}

std::vector<metadb_handle_ptr> take_over_older_records(ostrevan::metadb_handle_list_cref tracks) {
    if (!may_hold_older_records()) return {};
    std::vector<metadb_handle_ptr> waiting(tracks.begin(), tracks.end());
    const char* failure = "Playback statistics: records under older keys could not be taken over";
    try {
        StatsOp op("migration of records under older keys");
        auto [found, owners, unreadable] = find_older_records(op, tracks);
        waiting = std::move(owners);
        if (unreadable) std::rethrow_exception(unreadable);
        if (found.empty()) return {};
        back_up_index("migration", nullptr);
        failure = "Track information database save failure";
        take_over(op, found);
        return {};
    } catch (const std::exception& e) {
        print_to_console(std::string(failure) + ": " + e.what());
        return waiting;
    }
}

}  // namespace quorvel
