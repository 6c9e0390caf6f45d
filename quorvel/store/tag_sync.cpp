#include "quorvel/store/tag_sync.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/filesystem.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/settings.h"
#include "quorvel/store/file_tags.h"
#include "quorvel/store/key.h"
#include "quorvel/store/statistics_index.h"

namespace quorvel {
namespace {

using ostrevan::tag_update_service;

using record_of_track = std::map<ostrevan::metadb_handle_ptr, t_playback_stats>;

/// Writes the records as they were when the request was made. The player keeps it until the update is over.
class StampTagsFilter : public ostrevan::file_info_filter {
public:
    explicit StampTagsFilter(record_of_track records) noexcept : records_(std::move(records)) {}

    bool apply_filter(const ostrevan::metadb_handle_ptr& track, ostrevan::file_info_builder& info) override {
        const auto found = records_.find(track);
        if (found == records_.end()) return false;
        t_playback_stats current;
        PCDB_read_tags(current, info.build(), false);
        if (current == found->second) return false;
        PCDB_write_tags(found->second, info);
        return true;
    }

private:
    record_of_track records_;
};

class ClearTagsFilter : public ostrevan::file_info_filter {
public:
    bool apply_filter(const ostrevan::metadb_handle_ptr& /*track*/, ostrevan::file_info_builder& info) override {
        t_playback_stats current;
        PCDB_read_tags(current, info.build(), false);
        if (current == t_playback_stats{}) return false;
        PCDB_write_tags({}, info);
        return true;
    }
};

/// Asks the first file system that handles the path. A path that none of them handles may be rewritten.
bool is_writable(const ostrevan::metadb_handle& track) {
    const char* const path = track.location().path.c_str();
    const ostrevan::filesystem* owner = nullptr;
    ostrevan::for_each_service<ostrevan::filesystem>([&](const ostrevan::filesystem& candidate) {
        if (owner == nullptr && candidate.is_our_path(path)) owner = &candidate;
    });
    return owner == nullptr || !owner->is_remote(path);
}

/// Default records in their place would remove what the files say.
void report_left_out(ostrevan::metadb_handle_list_cref tracks) {
    const std::size_t others = tracks.get_count() - 1;
    print_to_console("Playback statistics: the file tags of " + tracks[0]->location().path +
                     (others == 0 ? "" : " and of " + std::to_string(others) + " more tracks") +
                     " are left as they are, because their statistics cannot be read");
}

}  // namespace

void PCDB_stamp_tags(ostrevan::metadb_handle_list_cref tracks, unsigned updateFlags,
                     ostrevan::completion_notify_ptr notify) {
    try {
        ostrevan::metadb_handle_list known;
        ostrevan::metadb_handle_list unknown;
        record_of_track records;
        for (const auto& track : tracks) {
            const auto key = KeyOf(*track);
            const auto record = key ? known_record(*key) : std::nullopt;
            (record ? known : unknown).items().push_back(track);
            if (record) records.emplace(track, *record);
        }
        if (!unknown.empty()) report_left_out(unknown);
        if (known.empty()) return;
        ostrevan::get_service<tag_update_service>()->update_async(
            known, ostrevan::service_new<StampTagsFilter>(std::move(records)), ostrevan::core_api::main_window(),
            updateFlags, std::move(notify));
    } catch (...) {  // the statistics are safe in the database, and a later request writes them
    }
}

void PCDB_clear_tags(ostrevan::metadb_handle_list_cref tracks, void* parent_window) {
    ostrevan::get_service<tag_update_service>()->update_async(tracks, ostrevan::service_new<ClearTagsFilter>(),
                                                              parent_window, 0, nullptr);
}

void PCDB_auto_sync_tags(ostrevan::metadb_handle_list_cref tracks, bool user_initiated) {
    if (!tag_sync_enabled.get()) return;
    const auto writable = writable_tracks(tracks);
    if (writable.empty()) return;
    constexpr unsigned quiet = tag_update_service::option_silent | tag_update_service::option_background;
    PCDB_stamp_tags(writable, user_initiated ? 0 : quiet, nullptr);
}

ostrevan::metadb_handle_list writable_tracks(ostrevan::metadb_handle_list_cref tracks) {
    ostrevan::metadb_handle_list result;
    for (const auto& track : tracks)
        if (is_writable(*track)) result.items().push_back(track);
    return result;
}

}  // namespace quorvel
