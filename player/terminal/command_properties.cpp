#include <algorithm>

#include "player/terminal/command.h"
#include "player/terminal/table.h"
#include "player/terminal/track_arguments.h"
#include "player/view/properties.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* properties_examples =
    "Examples:\n"
    "  ostrevan properties ~/Music/song.flac\n"
    "  ostrevan properties --where '%album% IS Blue'";

void print_properties(run_context& context, const track_arguments& wanted) {
    const auto tracks = tracks_of(context, wanted);
    const auto sections = context.on_main([&] { return view::track_properties(context.player.services, tracks); });
    for (const auto& section : sections) {
        context.out << section.name << '\n';
        std::size_t width = 0;
        for (const auto& row : section.rows) width = std::max(width, display_width(row.name));
        for (const auto& row : section.rows)
            context.out << "  " << row.name << std::string(width - display_width(row.name) + 2, ' ') << row.value << '\n';
        if (section.rows.empty()) context.out << "  nothing recorded\n";
    }
}

const command_file properties_command(50, [](declared_command& program) {
    const auto tracks = std::make_shared<track_arguments>();
    auto app = program.add("properties", "The property sections of a selection", properties_examples);
    tracks->declare(app);
    app.run([tracks](run_context& context) { print_properties(context, *tracks); });
});

}  // namespace
}  // namespace ostrevan::terminal
