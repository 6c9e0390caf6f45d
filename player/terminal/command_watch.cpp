#include "player/terminal/watch_output.h"

namespace ostrevan::terminal {
namespace {

struct watch_words {
    app::watch_options options{};
    bool json = false;
};

constexpr const char* watch_examples =
    "Examples:\n"
    "  ostrevan watch\n"
    "  ostrevan watch --only vlc --only mpd\n"
    "  ostrevan watch --except firefox --json\n"
    "Hears the players of the desktop (MPRIS) and MPD, found by MPD_HOST and MPD_PORT like any of its clients.\n"
    "Ctrl-C ends it.";

void watch(run_context& context, const watch_words& words) {
    app::watching watching(context.player, with_whole_paths(words.options), [&](const app::watch_report& report) {
        if (words.json) print_report_as_json(context.out, report);
        else print_report(context, report);
    });
    watching.run(context.job.stop());
}

const command_file watch_command(35, [](declared_command& program) {
    const auto words = std::make_shared<watch_words>();
    auto app = program.add("watch", "Count what other players play", watch_examples);
    declare_watch_options(app, words->options);
    app.add_flag("--json", words->json, "One JSON object per line");
    app.choose([words] {
        return chosen_command{.run = [words](run_context& context) { watch(context, *words); }, .is_lasting = true};
    });
});

}  // namespace
}  // namespace ostrevan::terminal
