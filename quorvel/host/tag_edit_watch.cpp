#include <utility>

#include "ostrevan/registration.h"
#include "ostrevan/tag_edit.h"
#include "quorvel/store/key_change.h"
#include "quorvel/store/worker.h"

namespace quorvel {
namespace {

/// Keys are made from tags: an edit can move a track to another one, and its statistics go with it.
class tag_edit_watch : public ostrevan::tag_edit_callback {
public:
    void on_tags_edited(const nuv::list_base_const_t<ostrevan::tag_edit>& edits) override {
        auto changes = key_changes(edits);
        if (changes.empty()) return;
        run_on_worker("Playback statistics: statistics could not follow a tag edit",
                      [changes = std::move(changes)] { follow_key_changes(changes); });
    }
};

ostrevan::service_factory_single_t<tag_edit_watch> watch;

}  // namespace
}  // namespace quorvel
