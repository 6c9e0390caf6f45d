#include <stdexcept>

#include "player/terminal/command.h"
#include "player/terminal/key_text.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* key_examples =
    "Examples:\n"
    "  ostrevan key ~/Music/song.flac";

void print_keys(run_context& context, const track_arguments& wanted) {
    const auto indexes = context.player.index.registrations();
    if (indexes.empty()) throw std::runtime_error("No component has registered an index; see 'ostrevan components'.");
    for (const auto& track : tracks_of(context, wanted)) {
        const auto key = key_text(indexes, *track);
        context.out << (key.empty() ? std::string(16, '-') : key) << ' ' << track->location().path;
        if (track->location().subsong != 0) context.out << '|' << track->location().subsong;
        context.out << '\n';
    }
}

const command_file key_command(120, [](declared_command& program) {
    const auto tracks = std::make_shared<track_arguments>();
    auto app = program.add("key", "The key of tracks in the statistics index", key_examples);
    tracks->declare(app);
    app.run([tracks](run_context& context) { print_keys(context, *tracks); });
});

}  // namespace
}  // namespace ostrevan::terminal
