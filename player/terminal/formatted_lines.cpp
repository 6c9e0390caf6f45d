#include "player/terminal/formatted_lines.h"

#include "player/titleformat/track_fields.h"

namespace ostrevan::terminal {

void print_lines(const run_context& context, const metadb_handle_list& tracks, const std::string& format) {
    const auto script = titleformat::compile(format);
    for (const auto& track : tracks) {
        if (!context.out || context.job.stop()) return;
        context.out << script.run(titleformat::track_fields(context.player.fields, *track)).text << '\n';
    }
}

}  // namespace ostrevan::terminal
