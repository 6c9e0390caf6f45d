#include "quorvel/store/migration.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "quorvel/common/console_line.h"
#include "quorvel/store/backup.h"
#include "quorvel/store/key.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {
namespace {

class older_records {
public:
    explicit older_records(ostrevan::index_manager& index) noexcept : index_(index) {}

    /// Adds what the index holds for the tracks under an older mapping.
    void gather(const nuv::guid& mapping, ostrevan::metadb_handle_list_cref tracks) {
        const auto held = index_.keys(mapping);
        if (held.empty()) return;
        const auto key_function = FindMapping(mapping);
        for (const auto& track : tracks) {
            const auto snapshot = track->info();
            if (!snapshot) continue;
            const std::uint64_t old_key = key_function->key_of(snapshot->info(), track->location());
            if (!std::ranges::binary_search(held, old_key)) continue;
            const auto key = KeyOf(snapshot->info(), track->location());
            if (!key || *key == 0 || record_at(statistics_index_guid, *key)) continue;
            if (const auto record = record_at(mapping, old_key)) add(*key, *record);
        }
    }

    [[nodiscard]] const record_map& found() const noexcept { return found_; }

private:
    [[nodiscard]] std::optional<t_playback_stats> record_at(const nuv::guid& index, std::uint64_t key) const {
        record_blob blob;
        if (index_.read(index, key, blob.data(), blob.size()) != blob.size()) return std::nullopt;
        return decode_record(blob);
    }

    /// Several old records can meet under one key: nothing of them is to be lost, and nothing counted twice.
    void add(std::uint64_t key, const t_playback_stats& record) {
        const auto* const known = found_.find(key);
        found_.set(key, known == nullptr ? record : merged(*known, record, MergeType::MergeMax));
    }

    ostrevan::index_manager& index_;
    record_map found_;
};

}  // namespace

bool migrate_older_mappings(ostrevan::metadb_handle_list_cref tracks) {
    auto* const index = opened_index();
    if (index == nullptr) return true;
    try {
        older_records older(*index);
        for (const auto& mapping : mapping_guids())
            if (mapping != active_mapping_guid) older.gather(mapping, tracks);
        if (older.found().empty()) return true;
        back_up_index("migration", nullptr);
        StatsOp op;
        for (const auto& [key, record] : older.found().entries()) op.SetByKey(key, record);
        op.commit();
        op.publish();
        return true;
    } catch (const std::exception& e) {
        print_to_console(std::string("Track information database save failure: ") + e.what());
        return false;
    }
}

}  // namespace quorvel
