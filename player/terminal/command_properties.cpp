#include <algorithm>
#include <iostream>

#include "player/terminal/commands.h"
#include "player/terminal/table.h"
#include "player/view/properties.h"

namespace ostrevan::terminal {

void run(run_context& context, const show_properties& arguments) {
    const auto tracks = tracks_of(context, arguments.tracks);
    for (const auto& section : view::track_properties(context.player.services, tracks)) {
        std::cout << section.name << '\n';
        std::size_t width = 0;
        for (const auto& row : section.rows) width = std::max(width, display_width(row.name));
        for (const auto& row : section.rows)
            std::cout << "  " << row.name << std::string(width - display_width(row.name) + 2, ' ') << row.value << '\n';
        if (section.rows.empty()) std::cout << "  nothing recorded\n";
    }
}

}  // namespace ostrevan::terminal
