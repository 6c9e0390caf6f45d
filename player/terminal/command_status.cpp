#include <chrono>
#include <cmath>
#include <thread>
#include <utility>

#include "player/terminal/command.h"
#include "player/terminal/playback_text.h"
#include "player/terminal/playing_now.h"
#include "player/terminal/track_json.h"

namespace ostrevan::terminal {
namespace {

using nlohmann::ordered_json;

struct status_options {
    bool json = false;
    bool follow = false;
};

constexpr const char* status_examples =
    "Examples:\n"
    "  ostrevan status\n"
    "  ostrevan status --json | jq .track.title\n"
    "  ostrevan status --follow\n"
    "Shows what plays in another process. --follow prints a line whenever something changes, until the playback ends: also "
    "when the queue is edited, which queue_edits counts in JSON.";

constexpr const char* repeat_words[] = {"off", "track", "list"};
constexpr const char* shuffle_words[] = {"off", "tracks", "albums"};

std::string format(const run_context& context, const char* script, metadb_handle& track) {
    return titleformat::compile(script).run(titleformat::track_fields(context.player.fields, track)).text;
}

std::string as_text(const run_context& context, const playing_now& now) {
    auto text = place_text(now.track.entry, now.status) + ": " + format(context, "[%artist% - ]%title%", *now.track.track) +
                "  " + clock_text(now.track.position);
    if (now.track.duration > 0) text += " / " + clock_text(now.track.duration);
    auto details = modes_of(now.status);
    details.insert(details.begin(), format(context, "[%rating_stars_fixed%]", *now.track.track));
    for (const auto& each : details)
        if (!each.empty()) text += "  " + each;
    return text;
}

ordered_json as_json(const track_json& object_of, const std::optional<playing_now>& now) {
    if (!now) return {{"state", "stopped"}};
    const auto& modes = now->status.order.modes();
    return {{"state", now->status.is_paused ? "paused" : "playing"},
            {"position", std::floor(now->track.position)},
            {"duration", now->track.duration},
            {"place", now->status.order.place_of(now->track.entry).value_or(0) + 1},
            {"tracks", now->status.order.size()},
            {"queue_edits", now->status.edits},
            {"volume", std::round(now->status.volume)},
            {"repeat", repeat_words[static_cast<std::size_t>(modes.repeat)]},
            {"shuffle", shuffle_words[static_cast<std::size_t>(modes.shuffle)]},
            {"stop_after", modes.stop_after},
            {"track", object_of(*now->track.track)}};
}

void show_status(const run_context& context, const status_options& wanted) {
    const track_json object_of(context);
    std::string before;
    std::size_t edits = 0;
    for (;;) {
        const auto now = wanted.json || !before.empty() ? find_playing(context) : std::optional(require_playing(context));
        if (!now && !wanted.json) return;
        const auto line = wanted.json ? text_of(as_json(object_of, now)) : as_text(context, *now);
        const bool is_edited = now && now->status.edits != std::exchange(edits, now->status.edits);
        if (!wanted.json && !before.empty() && is_edited)
            context.out << "The queue was edited: " << count_text(now->status.order.size()) << std::endl;
        if (line != before) context.out << line << std::endl;
        before = line;
        if (!wanted.follow || !context.out || !now) return;
        constexpr auto look_again = std::chrono::milliseconds(100);
        std::this_thread::sleep_for(look_again);
        if (context.job.stop()) return;
    }
}

const command_file status_command(32, [](declared_command& program) {
    const auto wanted = std::make_shared<status_options>();
    auto app = program.add("status", "Show what plays in another process", status_examples);
    app.add_flag("--json", wanted->json, "An object; a line each with --follow");
    app.add_flag("--follow", wanted->follow, "Print again whenever something changes");
    app.choose([wanted] {
        return chosen_command{.run = [wanted](run_context& context) { show_status(context, *wanted); },
                              .is_lasting = wanted->follow};
    });
});

}  // namespace
}  // namespace ostrevan::terminal
