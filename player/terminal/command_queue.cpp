#include "player/terminal/command.h"
#include "player/terminal/playing_now.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* queue_examples =
    "Examples:\n"
    "  ostrevan queue\n"
    "The tracks in the order in which they are played; the current one is marked.";

void print_queue(run_context& context) {
    const auto now = require_playing(context);
    const auto title = titleformat::compile("[%artist% - ]%title%");
    std::size_t number = 0;
    for (const auto place : now.status.order.round()) {
        if (!context.out || context.job.stop()) return;
        const titleformat::track_fields fields(context.player.fields, *now.list[place]);
        context.out << (place == now.track.place ? "> " : "  ") << ++number << '\t' << title.run(fields).text << '\n';
    }
}

const command_file queue_commands(36, [](declared_command& program) {
    program.add("queue", "List what is played in another process", queue_examples).run(print_queue);
});

}  // namespace
}  // namespace ostrevan::terminal
