#include "player/services/tag_edit_news.h"

#include <algorithm>
#include <span>
#include <utility>

namespace ostrevan::services {

void tag_edit_news::tell(const std::vector<tag_edit>& edits) {
    before_telling_(edits);
    all_told_ &= services_.for_each<tag_edit_callback>(
        [&](tag_edit_callback& callback) { callback.on_tags_edited(nuv::list_view_t<tag_edit>(edits)); },
        "following edited tags");
}

void tag_edit_news::tell(std::vector<library::track_edit> seen) {
    if (!seen.empty()) tell_from(std::make_shared<std::vector<library::track_edit>>(std::move(seen)), 0);
}

/// Components process each edit before they return. Portions let the main loop serve others when a tool has retagged the
/// whole library. Each portion is freed on its own, since freeing everything at once takes long too.
void tag_edit_news::tell_from(const std::shared_ptr<std::vector<library::track_edit>>& seen, std::size_t first) {
    constexpr std::size_t portion = 128;
    const auto rest = std::span(*seen).subspan(first);
    const auto now = rest.first(std::min(portion, rest.size()));
    std::vector<tag_edit> edits;
    for (const auto& [track, before, after, location_before] : now)
        edits.push_back({metadb_handle_ptr(track), &before->info(), &after->info(), nullptr,
                         location_before ? &*location_before : nullptr});
    tell(edits);
    std::ranges::fill(now, library::track_edit{});
    if (now.size() < rest.size()) loop_.post([this, seen, next = first + now.size()] { tell_from(seen, next); });
}

}  // namespace ostrevan::services
