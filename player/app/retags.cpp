#include "player/app/retags.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "player/core/component_call.h"

namespace ostrevan::app {
namespace {

using bytes = std::vector<std::byte>;

/// The record that edited tracks get by their new tags.
struct merging {
    std::optional<bytes> record;
    std::set<std::uint64_t> merged{};  ///< former keys
    metadb_handle_ptr first{};         ///< of the tracks that get it
};

/// Finds the merges in one index.
class merge_finder {
public:
    merge_finder(const services::index_manager_impl::registration& index, const index::index_store& records)
        : index_(index), records_(records), editing_(query_service<index_record_editing>(*index.client).get()) {}

    void find(const tag_edit& edit, std::vector<retag>& found) {
        if (editing_ == nullptr || edit.before == nullptr || edit.after == nullptr) return;
        const auto& now = edit.track->location();
        const auto& then = edit.location_before != nullptr ? *edit.location_before : now;
        core::call_component(*index_.client, [&] {
            const auto from = index_.client->key_of(*edit.before, then), to = index_.client->key_of(*edit.after, now);
            if (from != to) merge(edit.track, from, to, found);
        });
    }

private:
    void merge(const metadb_handle_ptr& track, std::uint64_t from, std::uint64_t to, std::vector<retag>& found) {
        const auto [known, is_new] = targets_.try_emplace(to);
        auto& target = known->second;
        if (is_new) target.record = records_.record(index_.index, to);
        const auto before = target.record;
        const auto own = records_.record(index_.index, from);
        if (own && target.merged.insert(from).second) target.record = editing_->merged(before ? *before : bytes(), *own);
        if (before) found.push_back({track, index_.index, {to, before, target.record}, target.first});
        if (!target.first) target.first = track;
    }

    const services::index_manager_impl::registration& index_;
    const index::index_store& records_;
    index_record_editing* const editing_;
    std::map<std::uint64_t, merging> targets_;
};

}  // namespace

std::vector<retag> merges_of(std::span<const tag_edit> edits, const index::index_store& records,
                             const services::index_manager_impl& index) {
    std::vector<retag> found;
    for (const auto& each : index.registrations()) {
        merge_finder finder(each, records);
        for (const auto& edit : edits) finder.find(edit, found);
    }
    return found;
}

void retag_log::add(std::vector<retag> found) {
    constexpr std::size_t most = 1000;
    const std::scoped_lock lock(mutex_);
    for (auto& each : found)
        if (found_.size() < most) found_.push_back(std::move(each));
}

std::vector<retag> retag_log::take() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(found_, {});
}

void retag_log::forget(metadb_handle_list_cref tracks) {
    const std::set<metadb_handle_ptr> gone(tracks.begin(), tracks.end());
    const std::scoped_lock lock(mutex_);
    std::erase_if(found_, [&](const retag& each) { return gone.contains(each.track); });
}

}  // namespace ostrevan::app
