#include "player/app/listen_log.h"

#include <ctime>
#include <span>
#include <utility>

#include "player/core/cause.h"

namespace ostrevan::app {

using services::index_manager_impl;

index::listen listen_log::listen_to(const metadb_handle& track, double seconds, const std::string& player) const {
    index::listen heard{.time = std::time(nullptr),
                        .path = track.location().path,
                        .subsong = track.location().subsong,
                        .seconds = seconds,
                        .player = player};
    for (const auto& each : index_.registrations())
        if (const auto key = index_manager_impl::key_of(each, track)) heard.keys.push_back({each.index, *key});
    return heard;
}

void listen_log::note_play(const metadb_handle_ptr& track, double seconds, const std::string& player) {
    if (records_.is_read_only()) return;
    auto heard = listen_to(*track, seconds, player);
    heard.is_counted = true;
    const auto& why = core::cause_scope::current();
    known_.note(std::span(&track, 1));
    records_.note(std::move(heard), why ? why->number : 0);
}

void listen_log::note_skip(const metadb_handle_ptr& track, double seconds, const std::string& player) {
    if (records_.is_read_only()) return;
    auto heard = listen_to(*track, seconds, player);
    const auto key = heard.keys.empty() ? std::nullopt : std::optional(heard.keys.front().key);
    const std::lock_guard lock(mutex_);
    records_.note(std::move(heard));
    if (skips_ && key) ++(*skips_)[*key];
}

std::size_t listen_log::skips_of(const metadb_handle& track) {
    const auto indexes = index_.registrations();
    const auto key = indexes.empty() ? std::nullopt : index_manager_impl::key_of(indexes.front(), track);
    if (!key) return 0;
    const std::lock_guard lock(mutex_);
    if (!skips_) {
        std::unordered_map<std::uint64_t, std::size_t> read;
        records_.read_journal().for_each_listen(indexes.front().index, [&](const index::brief_listen& heard) {
            if (!heard.is_counted && heard.key) ++read[*heard.key];
        });
        skips_ = std::move(read);
    }
    const auto found = skips_->find(*key);
    return found == skips_->end() ? 0 : found->second;
}

}  // namespace ostrevan::app
