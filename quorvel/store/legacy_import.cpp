#include "quorvel/store/legacy_import.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ostrevan/core_api.h"
#include "ostrevan/filesystem.h"
#include "ostrevan/metadb.h"
#include "ostrevan/popup.h"
#include "ostrevan/progress.h"
#include "quorvel/common/messages.h"
#include "quorvel/store/file_keys.h"
#include "quorvel/store/key.h"
#include "quorvel/store/legacy_file.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/statistics_index.h"
#include "quorvel/store/stats_op.h"

namespace quorvel {
namespace {

using ostrevan::filesystem;

constexpr const char* legacy_file_name = "PlaybackStatistics.dat";

std::string legacy_file_path() {
    constexpr auto separator = static_cast<char>(std::filesystem::path::preferred_separator);
    std::string path = ostrevan::core_api::profile_path();
    if (!path.ends_with(separator)) path += separator;
    return path + legacy_file_name;
}

std::vector<GatheredTrack> tracks_with_keys(const std::vector<legacy_record>& records) {
    const auto tracks = ostrevan::get_service<ostrevan::metadb>();
    std::vector<GatheredTrack> found;
    found.reserve(records.size());
    for (const auto& record : records) found.push_back({tracks->handle_create(record.location), std::nullopt});
    ostrevan::progress_scope progress("files of early statistics read");
    ReadKeysInFiles(found, progress);
    for (auto& each : found)
        if (!each.key) each.key = KeyOf(*each.track);
    return found;
}

/// What was stored under the keys before the import; nothing where there was no record.
using earlier_records = std::map<std::uint64_t, std::optional<t_playback_stats>>;

void merge(const std::vector<legacy_record>& records, const std::vector<GatheredTrack>& tracks, earlier_records& before) {
    StatsOp op(std::string("import of ") + legacy_file_name);
    for (std::size_t i = 0; i < records.size(); ++i) {
        const auto key = tracks[i].key;
        if (!key || *key == 0) continue;
        if (!before.contains(*key)) before.emplace(*key, op.Find(statistics_index_guid, *key));
        op.MergeStats(*key, records[i].stats, MergeType::MergeSum);
    }
    op.finish();
}

/// Returns how many records could not be put back to what they were.
std::size_t take_back(const earlier_records& before) {
    StatsOp op;
    std::size_t failed = 0;
    for (const auto& [key, record] : before) {
        try {
            if (op.Find(statistics_index_guid, key) == record) continue;
            if (record) op.SetByKey(key, *record);
            else op.Remove(statistics_index_guid, key);
        } catch (const std::exception&) {
            ++failed;
        }
    }
    op.finish();
    return failed;
}

/// After a failure the file stays and is imported again, so what has been written by then is taken back: it would be added a
/// second time. The same goes for what the player is still trying to save.
void merge_and_save(const std::vector<legacy_record>& records) {
    const auto tracks = tracks_with_keys(records);
    earlier_records before;
    try {
        merge(records, tracks, before);
        PCDB::SaveNow();
    } catch (const std::exception& e) {
        const auto failed = take_back(before);
        if (failed == 0) throw;
        throw std::runtime_error(std::string(e.what()) + ". " + std::to_string(failed) +
                                 " records have been added already, and will be once more at the next start");
    }
    if (const auto left_out = std::ranges::count_if(tracks, [](const auto& track) { return !track.key; }); left_out != 0)
        print_to_console(std::to_string(left_out) + " of " + std::to_string(records.size()) + " records in " +
                         legacy_file_name + " are of files that cannot be read; they were left out");
}

void import_file(filesystem& files, const std::string& path) {
    const auto records = read_legacy_file(*files.open(path.c_str(), filesystem::open_mode::read));
    // Without an index nothing would be written, and the file has to stay.
    if (opened_index() == nullptr) throw std::runtime_error("No active index");
    if (!records.empty()) back_up_index("legacy-import", path.c_str());
    merge_and_save(records);
    files.remove_retrying(path.c_str());
}

void show_failure(const std::exception& e) {
    const auto text = std::string("Could not import legacy playback statistics: ") + e.what();
    if (const auto popup = ostrevan::find_service<ostrevan::popup_message>())
        popup->show(text.c_str(), "Information", ostrevan::popup_message::icon_error);
}

}  // namespace

void PCDB_import_legacy() {
    try {
        const auto files = filesystem::g_get("file://dummy");
        const auto path = legacy_file_path();
        if (files->exists(path.c_str())) import_file(*files, path);
    } catch (const std::exception& e) {
        show_failure(e);
    }
}

}  // namespace quorvel
