#include "player/terminal/command.h"
#include "player/terminal/formatted_lines.h"
#include "player/terminal/track_arguments.h"

namespace ostrevan::terminal {
namespace {

struct format_options {
    std::string script{};
    track_arguments tracks{};
};

constexpr const char* format_examples =
    "Examples:\n"
    "  ostrevan format '%title% %rating_stars_fixed%' ~/Music/song.flac\n"
    "  ostrevan format '$if2(%album artist%,%artist%)' --where 'ALL'";

const command_file format_command(40, [](declared_command& program) {
    const auto wanted = std::make_shared<format_options>();
    auto app = program.add("format", "Print one line per track", format_examples);
    app.add_option("SCRIPT", &wanted->script, "A title formatting script").required();
    wanted->tracks.declare(app);
    app.run([wanted](run_context& context) {
        print_lines(context, tracks_of(context, wanted->tracks, on_missing::go_on), wanted->script);
    });
});

}  // namespace
}  // namespace ostrevan::terminal
