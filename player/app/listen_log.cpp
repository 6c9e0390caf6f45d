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
    if (skips_ && skips_->noted == noted_) {
        ++skips_->noted;
        if (key) ++skips_->by_key[*key];
    }
    ++noted_;
}

listen_log::skip_counts listen_log::read_skips(const nuv::guid& index, std::uint64_t noted) {
    skip_counts read{.noted = noted, .successor_changes = records_.successor_changes()};
    auto journal = records_.read_journal();
    read.followed = journal.successors_in(index);
    journal.for_each_listen(index, [&](const index::brief_listen& heard) {
        if (!heard.is_counted && heard.key) ++read.by_key[*heard.key];
    });
    return read;
}

std::size_t listen_log::skips_of(const metadb_handle& track) {
    const auto indexes = index_.registrations();
    const auto key = indexes.empty() ? std::nullopt : index_manager_impl::key_of(indexes.front(), track);
    if (!key) return 0;
    const std::lock_guard reading(reading_);
    std::unique_lock lock(mutex_);
    if (!skips_ || skips_->noted != noted_ || skips_->successor_changes != records_.successor_changes()) {
        const auto noted = noted_;
        lock.unlock();
        auto read = read_skips(indexes.front().index, noted);
        lock.lock();
        skips_ = std::move(read);
    }
    std::size_t sum = 0;
    for (const auto each : skips_->followed.leading_to(*key))
        if (const auto found = skips_->by_key.find(each); found != skips_->by_key.end()) sum += found->second;
    return sum;
}

}  // namespace ostrevan::app
