#include "quorvel/store/file_keys.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <semaphore>
#include <thread>
#include <unordered_map>
#include <vector>

#include "ostrevan/input.h"
#include "quorvel/store/key.h"

namespace quorvel {
namespace {

/// How often the main thread checks whether the user has stopped it.
constexpr std::chrono::milliseconds between_looks{50};

struct keys_in_file {
    std::optional<std::uint64_t> key;
    std::optional<std::uint64_t> older_key;
};

keys_in_file read_keys(const ostrevan::playable_location& location, ostrevan::index_client* older_mapping) {
    const auto reader = ostrevan::input_entry::g_open_for_info_read(location.path.c_str());
    const auto info = reader->get_info(location.subsong);
    return {KeyOf(info, location),
            older_mapping == nullptr ? std::nullopt : std::optional(older_mapping->key_of(info, location))};
}

/// The tracks whose files have to be read, in their order. Only keys are kept, so that the information of many files is
/// never in memory at once.
class unknown_tracks {
public:
    unknown_tracks(std::vector<GatheredTrack>& gathered, ostrevan::index_client* older_mapping)
        : older_mapping_(older_mapping) {
        for (auto& each : gathered)
            if (!each.track->info()) tracks_.push_back(&each);
    }
    [[nodiscard]] std::size_t size() const noexcept { return tracks_.size(); }
    [[nodiscard]] std::size_t done() const noexcept { return done_; }

    /// [worker]
    void read(const std::stop_token& stop) noexcept {
        for (auto* const each : tracks_) {
            if (stop.stop_requested()) return;
            try {
                const auto [known, is_new] = keys_.try_emplace(each->track.get());
                if (is_new) known->second = read_keys(each->track->location(), older_mapping_);
                each->key = known->second.key;
                each->older_key = known->second.older_key;
            } catch (...) {  // a file that cannot be read has no key
            }
            ++done_;
        }
    }

private:
    ostrevan::index_client* older_mapping_;
    std::vector<GatheredTrack*> tracks_;
    std::unordered_map<const ostrevan::metadb_handle*, keys_in_file> keys_;  // a file is read once
    std::atomic<std::size_t> done_ = 0;
};

}  // namespace

/// A thread of its own and not one of the player, because it must end before this call does, even when that throws.
void ReadKeysInFiles(std::vector<GatheredTrack>& gathered, ostrevan::progress_scope& progress,
                     const ostrevan::index_client_ptr& older_mapping) {
    unknown_tracks tracks(gathered, older_mapping.get());
    if (tracks.size() == 0) return;
    std::binary_semaphore finished(0);
    const std::jthread worker([&](const std::stop_token& stop) {
        tracks.read(stop);
        finished.release();
    });
    while (!finished.try_acquire_for(between_looks)) progress.look(tracks.done(), tracks.size());
}

}  // namespace quorvel
