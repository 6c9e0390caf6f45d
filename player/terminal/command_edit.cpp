#include <atomic>

#include "ostrevan/tag_update.h"
#include "player/terminal/commands.h"

namespace ostrevan::terminal {
namespace {

class tag_edit_filter : public file_info_filter {
public:
    explicit tag_edit_filter(const edit_tags& wanted) : wanted_(wanted) {}

    bool apply_filter(const metadb_handle_ptr& /*track*/, file_info& info) override {
        const file_info before = info;
        for (const auto& name : wanted_.remove) info.meta_remove_field(name);
        for (const auto& [name, value] : values()) info.meta_set_values(name, value);
        const bool is_changed = !(info == before);
        ++(is_changed ? changed_ : unchanged_);
        return is_changed;
    }

    /// "3 files edited, 1 was so already".
    [[nodiscard]] std::string summary() const {
        auto text = std::to_string(changed_) + (changed_ == 1 ? " file edited" : " files edited");
        if (unchanged_ != 0) text += ", " + std::to_string(unchanged_) + " had these tags already";
        return text;
    }

private:
    /// A field that is set more than once gets several values.
    [[nodiscard]] std::vector<std::pair<std::string, std::vector<std::string>>> values() const {
        file_info gathered;
        for (const auto& [name, value] : wanted_.set) gathered.meta_add(name, value);
        std::vector<std::pair<std::string, std::vector<std::string>>> out;
        for (std::size_t i = 0; i < gathered.meta_count(); ++i)
            out.emplace_back(gathered.meta_name(i), gathered.meta_values(i));
        return out;
    }

    const edit_tags wanted_;
    // Counted on the worker, read when it is done.
    std::atomic<std::size_t> changed_{0};
    std::atomic<std::size_t> unchanged_{0};
};

constexpr std::size_t many = 100;

bool is_wanted(terminal& screen, std::size_t count) {
    const auto answer =
        screen.ask({.text = "You're about to edit the tags of " + std::to_string(count) + " files. Continue?",
                    .title = "Edit",
                    .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                    .reply = {}});
    return answer == popup_message_v3::answer_yes;
}

}  // namespace

void run(run_context& context, const edit_tags& arguments) {
    context.player.require_writable();
    const auto tracks = tracks_of(context, arguments.tracks);
    if (tracks.empty()) return;
    if (arguments.tracks.where && tracks.get_count() > many && !is_wanted(context.screen, tracks.get_count())) return;
    const auto filter = service_new<tag_edit_filter>(arguments);
    auto* const service = context.player.services.at(tag_update_service::class_guid, 0);
    static_cast<tag_update_service*>(service)->update_async(tracks, filter, nullptr, 0, {});
    context.player.run_until_idle();
    context.screen.note_done(filter->summary());
}

}  // namespace ostrevan::terminal
