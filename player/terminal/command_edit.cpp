#include <atomic>

#include "ostrevan/tag_update.h"
#include "player/app/retag_notes.h"
#include "player/system/counted.h"
#include "player/terminal/command.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

struct edit_options {
    track_arguments tracks{};
    std::vector<std::string> assignments{};  ///< FIELD=VALUE
    std::vector<std::pair<std::string, std::string>> set{};
    std::vector<std::string> remove{};

    /// Throws for arguments that make no sense.
    void check();
};

constexpr const char* edit_examples =
    "Examples:\n"
    "  ostrevan edit ~/Music/song.flac --set 'title=New name' --remove comment\n"
    "  ostrevan edit --where '%artist% IS Bjork' --set artist=Björk";

void edit_options::check() {
    for (const auto& text : assignments) {
        const auto equals = text.find('=');
        if (equals == 0 || equals == std::string::npos)
            refuse_arguments("--set", "'" + text + "' is not of the form FIELD=VALUE");
        set.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    }
    if (set.empty() && remove.empty()) refuse_arguments("edit", "say what to do: --set or --remove");
}

class tag_edit_filter : public file_info_filter {
public:
    explicit tag_edit_filter(const edit_options& wanted) : wanted_(wanted) {}

    bool apply_filter(const metadb_handle_ptr& /*track*/, file_info_builder& info) override {
        const file_info before = info.build();
        apply(info);
        const bool is_changed = !(info.build() == before);
        ++(is_changed ? changed_ : unchanged_);
        return is_changed;
    }

    void apply(file_info_builder& info) const {
        for (const auto& name : wanted_.remove) info.meta_remove_field(name);
        for (const auto& [name, value] : values()) info.meta_set_values(name, value);
    }

    /// "3 files edited, 1 had these tags already".
    [[nodiscard]] std::string summary() const {
        auto text = system::counted(changed_, "file") + " edited";
        if (unchanged_ != 0) text += ", " + std::to_string(unchanged_) + " had these tags already";
        return text;
    }

private:
    /// A field that is set more than once gets several values.
    [[nodiscard]] std::vector<std::pair<std::string, std::vector<std::string>>> values() const {
        file_info_builder gathered;
        for (const auto& [name, value] : wanted_.set) gathered.meta_add(name, value);
        std::vector<std::pair<std::string, std::vector<std::string>>> out;
        for (std::size_t i = 0; i < gathered.meta_count(); ++i)
            out.emplace_back(gathered.meta_name(i), gathered.meta_values(i));
        return out;
    }

    const edit_options wanted_;
    // Written by the worker, read after it has finished.
    std::atomic<std::size_t> changed_{0};
    std::atomic<std::size_t> unchanged_{0};
};

constexpr std::size_t many_files = 100;

bool is_wanted(terminal& screen, const std::string& question) {
    const auto answer = screen.ask({.text = question,
                                    .title = "Edit",
                                    .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                                    .reply = {}});
    return answer == popup_message_v3::answer_yes;
}

/// Tells the user of tracks that would get the tags of others, as far as the player knows their tags. Returns how many.
std::size_t note_merges(run_context& context, const metadb_handle_list& tracks, const tag_edit_filter& filter) {
    std::vector<metadb_info_ptr> before;
    std::vector<file_info> after;
    std::vector<tag_edit> edits;
    before.reserve(tracks.get_count());
    after.reserve(tracks.get_count());  // the edits point into them
    for (const auto& track : tracks) {
        auto info = track->info();
        if (!info) continue;
        file_info_builder builder(info->info());
        filter.apply(builder);
        before.push_back(std::move(info));
        after.push_back(builder.build());
        edits.push_back({.track = track, .before = &before.back()->info(), .after = &after.back()});
    }
    return app::note_retags(context.player, app::merges_of(edits, context.player.records(), context.player.index),
                            [&](const std::string& line) { context.screen.note(line); });
}

void edit(run_context& context, const edit_options& wanted) {
    context.player.require_writable();
    const auto tracks = tracks_of(context, wanted.tracks);
    if (tracks.empty()) return;
    if (wanted.tracks.where && tracks.get_count() > many_files &&
        !is_wanted(context.screen,
                   "You're about to edit the tags of " + std::to_string(tracks.get_count()) + " files. Continue?"))
        return;
    const auto filter = service_new<tag_edit_filter>(wanted);
    if (const auto merged = note_merges(context, tracks, *filter);
        merged != 0 &&
        !is_wanted(context.screen, (merged == 1 ? std::string("A track gets") : std::to_string(merged) + " tracks get") +
                                       " the tags of another one and will share its statistics. Continue?"))
        return;
    auto* const service = context.player.services.at(tag_update_service::class_guid, 0);
    context.on_main([&] { static_cast<tag_update_service*>(service)->update_async(tracks, filter, nullptr, 0, {}); });
    context.job.wait_until_idle();
    context.player.retags.forget(tracks);  // the user knows of them
    context.screen.note_done(filter->summary());
}

const command_file edit_command(60, [](declared_command& program) {
    const auto wanted = std::make_shared<edit_options>();
    auto app = program.add("edit", "Edit tags in the files", edit_examples);
    wanted->tracks.declare(app);
    app.add_option("--set", &wanted->assignments, "A field and its new value, may be repeated")
        .called("FIELD=VALUE")
        .one_value_each();
    app.add_option("--remove", &wanted->remove, "A field to remove, may be repeated").called("FIELD").one_value_each();
    app.choose([wanted] {
        wanted->check();
        return chosen_command{[wanted](run_context& context) { edit(context, *wanted); }};
    });
});

}  // namespace
}  // namespace ostrevan::terminal
