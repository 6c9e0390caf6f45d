#include "quorvel/host/edit_rating.h"

#include <algorithm>
#include <string>

#include "ostrevan/core_api.h"
#include "quorvel/common/messages.h"
#include "quorvel/common/shared_tracks.h"
#include "quorvel/store/pcdb.h"
#include "quorvel/store/tag_sync.h"

namespace quorvel {
namespace {

using ostrevan::popup_message_v3;

/// Beyond this the user is asked first, because a keyboard shortcut on a whole library is easily pressed.
constexpr std::size_t most_without_question = 100;

shared_tracks distinct(ostrevan::metadb_handle_list_cref items) {
    ostrevan::metadb_handle_list tracks(items);
    auto& list = tracks.items();
    std::ranges::sort(list);
    list.erase(std::unique(list.begin(), list.end()), list.end());
    return std::make_shared<const ostrevan::metadb_handle_list>(std::move(tracks));
}

void change(ostrevan::metadb_handle_list_cref tracks, std::uint32_t rating, std::int32_t step) {
    if (step == 0) PCDB::SetRating(tracks, rating);
    else PCDB::AdjustRating(tracks, step);
    PCDB_auto_sync_tags(tracks, true);
}

}  // namespace

void editRating(ostrevan::metadb_handle_list_cref items, std::uint32_t rating, std::int32_t step) {
    ostrevan::core_api::ensure_main_thread();
    const auto tracks = distinct(items);
    if (tracks->empty()) return;
    if (tracks->get_count() <= most_without_question) {
        change(*tracks, rating, step);
        return;
    }
    ask("You're about to edit rating of " + std::to_string(tracks->get_count()) + " tracks. Continue?", "Warning",
        popup_message_v3::style_yes_no, [tracks, rating, step](unsigned answer) {
            if (answer == popup_message_v3::answer_yes) change(*tracks, rating, step);
        });
}

}  // namespace quorvel
