#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/front/track_selection.h"

namespace ostrevan::cli {

metadb_handle_list tracks_of(run_context& context, const track_arguments& arguments) {
    if (arguments.where) {
        auto found = front::find_tracks(context.player, *arguments.where);
        if (found.empty()) context.screen.note("No track of the library matches " + *arguments.where);
        return found;
    }
    if (arguments.paths.empty()) throw usage_error("Name at least one track: a path, a folder, or --where QUERY.");
    return front::tracks_at(context.player, arguments.paths);
}

}  // namespace ostrevan::cli
