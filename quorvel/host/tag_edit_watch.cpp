#include <atomic>
#include <utility>

#include "ostrevan/registration.h"
#include "ostrevan/tag_edit.h"
#include "quorvel/common/tasks.h"
#include "quorvel/store/key_change.h"
#include "quorvel/store/statistics_index.h"

namespace quorvel {
namespace {

/// An edit of tags can change the key of a track. Its statistics follow.
class tag_edit_watch : public ostrevan::tag_edit_callback {
public:
    void on_tags_edited(const nuv::list_base_const_t<ostrevan::tag_edit>& edits) override {
        if (opened_index() == nullptr) return outcome_.note_failure();
        auto changes = key_changes(edits);
        if (changes.empty()) return;
        run_on_worker("Playback statistics: statistics could not follow a tag edit, which is tried again at the next start",
                      [this, changes = std::move(changes)] {
                          try {
                              follow_key_changes(changes);
                          } catch (...) {
                              outcome_.note_failure();
                              throw;
                          }
                      });
    }
    ostrevan::service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == ostrevan::tag_edit_outcome::class_guid ? &outcome_ : nullptr;
    }

private:
    class outcome : public ostrevan::tag_edit_outcome {
    public:
        void note_failure() noexcept { failed_ = true; }
        bool all_followed() noexcept override { return !failed_.exchange(false); }

    private:
        std::atomic<bool> failed_ = false;
    };
    ostrevan::service_uncounted_t<outcome> outcome_;
};

ostrevan::service_factory_single_t<tag_edit_watch> g_tag_edit_watch;

}  // namespace
}  // namespace quorvel
