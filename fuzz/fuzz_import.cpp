// Seeds: fuzz/seeds/import tests/quorvel/golden
#include <cstdint>
#include <map>
#include <set>
#include <string_view>

#include "fuzz/check.h"
#include "quorvel/interchange/import_command.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/record_fields.h"
#include "tests/support/memory_player.h"

namespace {

using quorvel::PCDB;
using quorvel::t_playback_stats;

/// Every record before an import; distinct values tell the fields apart.
constexpr t_playback_stats before{.play_count = 1, .first_played = 2, .last_played = 3, .added = 4, .rating = 5};

/// A player with a small library; some of its files have not been read.
class desk {
public:
    desk() {
        const support::tag_values tags{{"artist", "a"},      {"album", "b"},       {"discnumber", "2"},
                                       {"tracknumber", "3"}, {"tracknumber", "3"}, {"title", "t"}};
        player.library.items = {support::make_track("/m/1.flac", tags), support::make_track("/m/2.flac", {{"title", "u"}})};
        player.playlists.items = player.library.items;
        player.decoders.files = {{{"/m/3.flac", 0}, support::make_info({{"title", "v"}})},
                                 {{"/m/4.cue", 2}, support::make_info({{"title", "w"}})}};
        player.start();
    }

    /// As it was before the first import.
    void reset() {
        player.index.clear();
        player.metadb.tracks.clear();
        for (const auto& track : player.library.items) {
            player.metadb.tracks[track->location()] = track;
            PCDB::Update(*quorvel::KeyOf(*track), [](t_playback_stats& record) { record = before; });
        }
        forget_traces();
    }
    void forget_traces() {
        player.index.refreshes.clear();
        player.index.committed = 0;
        player.popups.questions().clear();
        player.progress.started.clear();
        player.progress.steps.clear();
        player.console.lines.clear();
        player.decoders.opened.clear();
    }
    [[nodiscard]] std::map<std::uint64_t, t_playback_stats> records() const {
        std::map<std::uint64_t, t_playback_stats> all;
        for (const auto key : PCDB::KeysFrom(0, static_cast<std::size_t>(-1))) all[key] = PCDB::GetByKey(key);
        return all;
    }

    support::memory_player player;
};

void check_fields(const t_playback_stats& was, const t_playback_stats& is, std::uint32_t fields) {
    const auto kept = [&](quorvel::ExportFields field, bool same) {
        fuzz::check(same || (fields & field) != 0, "a field that was not chosen stays as it was");
    };
    kept(quorvel::field_play_count, was.play_count == is.play_count);
    kept(quorvel::field_first_played, was.first_played == is.first_played);
    kept(quorvel::field_last_played, was.last_played == is.last_played);
    kept(quorvel::field_added, was.added == is.added);
    kept(quorvel::field_rating, was.rating == is.rating);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static auto& here = *new desk;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto fields = static_cast<std::uint32_t>(size % quorvel::all_fields + 1);

    here.reset();
    auto was = here.records();
    quorvel::import_file(text, fields);
    const auto is = here.records();
    const auto& refreshes = here.player.index.refreshes;
    fuzz::check(here.player.index.committed <= 1, "an import is one transaction");
    fuzz::check(refreshes.size() == here.player.index.committed, "what is written is shown, at once");
    fuzz::check(!is.contains(0), "key 0 is never written");
    const auto shown =
        refreshes.empty() ? std::set<std::uint64_t>() : std::set(refreshes.front().begin(), refreshes.front().end());
    fuzz::check(refreshes.empty() || shown.size() == refreshes.front().size(), "every key is shown once");
    for (const auto& [key, record] : is) {
        check_fields(was[key], record, fields);
        fuzz::check(record == was[key] || shown.contains(key), "what has changed is shown");
    }

    const auto failures = here.player.popups.questions().size();
    fuzz::check(failures <= 1, "a failure is told once");
    here.forget_traces();
    quorvel::import_file(text, fields);
    fuzz::check(here.records() == is, "an import that is repeated changes nothing");
    fuzz::check(here.player.popups.questions().size() == failures, "what failed fails again");
    return 0;
}
