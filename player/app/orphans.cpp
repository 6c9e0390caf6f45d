#include "player/app/orphans.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "player/app/changed_records.h"
#include "player/core/component_call.h"
#include "player/history/similar_tracks.h"
#include "player/system/user_error.h"

namespace ostrevan::app {
namespace {

using services::index_manager_impl;
using registration = index_manager_impl::registration;

std::vector<std::uint64_t> keys_of_tracks(const registration& index, std::span<const metadb_handle_ptr> tracks) {
    std::vector<std::uint64_t> keys;
    keys.reserve(tracks.size());
    for (const auto& track : tracks)
        if (const auto key = index_manager_impl::key_of(index, *track)) keys.push_back(*key);
    std::ranges::sort(keys);
    return keys;
}

std::span<const std::byte> bytes_of(const std::optional<std::vector<std::byte>>& record) {
    return record ? std::span<const std::byte>(*record) : std::span<const std::byte>();
}

/// Tells what is still in the library or on the disk.
class library_view {
    const library::kept_list<metadb_handle_ptr>::pointer items_;

public:
    explicit library_view(session& player) : items_(player.library.unordered_items()), tracks(*items_) {
        for (const auto& each : tracks) paths_.insert(each->location().path);
    }
    const std::vector<metadb_handle_ptr>& tracks;

    /// False for a file on the disk that is not in the library.
    [[nodiscard]] bool is_gone(const std::string& path) const {
        std::error_code error;
        return paths_.contains(path) || !std::filesystem::exists(path, error);
    }
    [[nodiscard]] std::vector<orphan::home> homes_of(const index::known_track& known) {
        constexpr std::size_t most = 3;
        if (known.title.empty()) return {};
        if (!names_) {
            std::vector<history::track_name> names;
            names.reserve(tracks.size());
            for (const auto& track : tracks) names.push_back(name_of(*track));
            names_.emplace(names);
        }
        std::vector<orphan::home> homes;
        for (const auto& [place, is_exact] : names_->find({known.artist, known.album, known.title}, most))
            homes.push_back({tracks[place], is_exact});
        return homes;
    }

private:
    std::unordered_set<std::string_view> paths_;
    std::optional<history::similar_tracks> names_;  // made for the first that needs it
};

/// Notes of earlier versions are missing, but a play has left its path.
index::known_track known_by_its_plays(index::journal& journal, const nuv::guid& index, std::uint64_t key) {
    index::known_track known{.index = index, .key = key};
    if (auto listens = journal.listens_of(index, key); !listens.empty()) {
        known.path = std::move(listens.front().path);
        known.subsong = listens.front().subsong;
    }
    return known;
}

index::known_track what_is_known(index::index_store& records, const nuv::guid& index, std::uint64_t key) {
    auto journal = records.read_journal();
    auto all = journal.known_tracks(index);
    const auto noted = std::ranges::find(all, key, &index::known_track::key);
    return noted == all.end() ? known_by_its_plays(journal, index, key) : std::move(*noted);
}

}  // namespace

std::vector<orphan> find_orphans(session& player, orphan_choice choice,
                                 const std::function<void(std::size_t done, std::size_t total)>& on_progress) {
    constexpr std::size_t step = 1024;
    std::vector<orphan> found;
    library_view library(player);
    auto journal = player.records().read_journal();
    for (const auto& index : player.index.registrations()) {
        const auto with_track = keys_of_tracks(index, library.tracks);
        std::unordered_map<std::uint64_t, index::known_track> known;
        for (auto& each : journal.known_tracks(index.index)) known.try_emplace(each.key, std::move(each));
        const auto keys = player.records().keys(index.index);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (i % step == 0) on_progress(i, keys.size());
            if (core::is_stopping()) return found;
            if (std::ranges::binary_search(with_track, keys[i])) continue;
            const auto noted = known.find(keys[i]);
            auto about = noted == known.end() ? known_by_its_plays(journal, index.index, keys[i]) : std::move(noted->second);
            if (choice == orphan_choice::gone) {
                const bool has_moved_on = about.successor && std::ranges::binary_search(keys, *about.successor);
                if (has_moved_on || (!about.path.empty() && !library.is_gone(about.path))) continue;
            }
            auto homes = library.homes_of(about);
            found.push_back({index, std::move(about),
                             player.records().record(index.index, keys[i]).value_or(std::vector<std::byte>()),
                             std::move(homes)});
        }
    }
    return found;
}

void attach_orphan(session& player, std::uint64_t key, const metadb_handle_ptr& track) {
    auto& records = player.records();
    const auto indexes = player.index.registrations();
    const auto index =
        std::ranges::find_if(indexes, [&](const registration& each) { return records.record(each.index, key).has_value(); });
    if (index == indexes.end()) throw system::user_error("There is no record with this key; see 'ostrevan orphans'.");
    const auto home = index_manager_impl::key_of(*index, *track);
    if (!home) throw std::runtime_error(track->location().path + " has no tags that could be read.");
    if (const auto owners = tracks_with_keys(player, index->index, {key}); !owners.empty() || *home == key)
        throw system::user_error("This is the record of " + (owners.empty() ? track : owners[0].track)->location().path +
                                 ".");
    auto* const editing = query_service<index_record_editing>(*index->client).get();
    if (editing == nullptr) throw std::runtime_error("The component of this record has no rule for merging two.");

    auto known = what_is_known(records, index->index, key);
    known.successor = *home;
    auto transaction = records.begin();
    const auto into = records.record(index->index, *home), from = records.record(index->index, key);
    const auto both = core::call_component(*editing, [&] { return editing->merged(bytes_of(into), bytes_of(from)); });
    transaction.write(index->index, *home, both);
    transaction.write(index->index, key, {});
    transaction.note({known});
    transaction.commit();
    tell_of_changed_records(player, index->index, {key, *home});
    player.save();
}

}  // namespace ostrevan::app
