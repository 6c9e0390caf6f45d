#include "player/services/tag_edit_news.h"

#include <algorithm>
#include <iterator>
#include <memory>
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
    const auto all = std::make_shared<std::vector<library::track_edit>>(std::move(seen));
    tell([all, first = std::size_t{0}]() mutable {
        const auto now = std::span(*all).subspan(first).first(std::min(library::edits_of_portion, all->size() - first));
        first += now.size();
        return std::vector(std::move_iterator(now.begin()), std::move_iterator(now.end()));
    });
}

void tag_edit_news::tell(library::edit_portions portions) {
    try {
        const auto seen = portions();
        if (seen.empty()) return;
        std::vector<tag_edit> edits;
        edits.reserve(seen.size());
        for (const auto& [track, before, after, location_before] : seen)
            edits.push_back({metadb_handle_ptr(track), &before->info(), &after->info(), nullptr,
                             location_before ? &*location_before : nullptr});
        tell(edits);
    } catch (...) {
        all_told_ = false;  // the library keeps them for the next start
        throw;
    }
    loop_.post([this, portions = std::move(portions)] { tell(portions); });
}

}  // namespace ostrevan::services
