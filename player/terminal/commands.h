#pragma once

#include "player/app/session.h"
#include "player/terminal/arguments.h"
#include "player/terminal/terminal.h"

namespace ostrevan::terminal {

/// What a command runs with.
struct run_context {
    app::session& player;
    terminal& screen;
};

/// One function a command. Results go to standard output; failures are thrown, or reported to the screen one by one.
void run(run_context& context, const library_add& arguments);
void run(run_context& context, const library_remove& arguments);
void run(run_context& context, const library_rescan& arguments);
void run(run_context& context, const library_ignore& arguments);
void run(run_context& context, const library_folders& arguments);
void run(run_context& context, const list_tracks& arguments);
void run(run_context& context, const play_tracks& arguments);
void run(run_context& context, const format_tracks& arguments);
void run(run_context& context, const show_properties& arguments);
void run(run_context& context, const edit_tags& arguments);
void run(run_context& context, const main_menu& arguments);
void run(run_context& context, const context_menu& arguments);
void run(run_context& context, const rate_tracks& arguments);
void run(run_context& context, const show_settings& arguments);
void run(run_context& context, const playlist_list& arguments);
void run(run_context& context, const playlist_show& arguments);
void run(run_context& context, const playlist_create& arguments);
void run(run_context& context, const playlist_remove& arguments);
void run(run_context& context, const show_keys& arguments);
void run(run_context& context, const index_dump& arguments);
void run(run_context& context, const index_prune& arguments);
void run(run_context& context, const list_components& arguments);

/// What becomes of a command one of whose tracks is not there: one that changes something had better not run at all.
enum class on_missing { stop, go_on };

/// The tracks that a command line names, without files that are no audio by their names. Throws `usage_error` when it names
/// none, or its query has a mistake.
metadb_handle_list tracks_of(run_context& context, const track_arguments& arguments, on_missing missing = on_missing::stop);

}  // namespace ostrevan::terminal
