#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "player/app/known_tracks.h"
#include "player/index/index_store.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

/// Notes counted plays and skips for good. [main-thread]
class listen_log {
public:
    listen_log(index::index_store& records, const services::index_manager_impl& index, known_tracks& known)
        : records_(records), index_(index), known_(known) {}

    /// Called under the cause that counted the play. `seconds` were heard until then; `player` is another program, or empty.
    void note_play(const metadb_handle_ptr& track, double seconds, const std::string& player);
    /// The listener left the track in its first half, after `seconds` were heard.
    void note_skip(const metadb_handle_ptr& track, double seconds, const std::string& player);
    /// How often the track was skipped, also by its former tags. The first call, and the first one after an edit of tags,
    /// reads all listens; throws std::runtime_error when that fails.
    /// [any-thread]
    [[nodiscard]] std::size_t skips_of(const metadb_handle& track);

private:
    struct skip_counts {
        std::uint64_t noted = 0;              // `noted_` when they were read
        std::uint64_t successor_changes = 0;  // of the store, likewise
        index::successors followed{};
        std::unordered_map<std::uint64_t, std::size_t> by_key{};  // in the first index
    };

    [[nodiscard]] index::listen listen_to(const metadb_handle& track, double seconds, const std::string& player) const;
    [[nodiscard]] skip_counts read_skips(const nuv::guid& index, std::uint64_t noted);

    index::index_store& records_;
    const services::index_manager_impl& index_;
    known_tracks& known_;
    std::mutex reading_;  // taken before mutex_: one thread reads the journal, and a skip is noted meanwhile
    std::mutex mutex_;    // held from noting a skip to counting it
    std::uint64_t noted_ = 0;
    std::optional<skip_counts> skips_;
};

}  // namespace ostrevan::app
