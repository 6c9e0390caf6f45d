#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// The tracks a command is for: locations (`path`, `path|subsong`, a folder) or everything a query matches.
struct track_arguments {
    std::vector<std::string> paths{};
    std::optional<std::string> where{};

    /// Declares the words that name them.
    void declare(CLI::App& app);
};

/// What becomes of a command one of whose tracks is not there: one that changes something had better not run at all.
enum class on_missing { stop, go_on };

/// The tracks that a command line names, without files that are no audio by their names. Throws `usage_error` when it names
/// none, or its query has a mistake.
metadb_handle_list tracks_of(run_context& context, const track_arguments& arguments, on_missing missing = on_missing::stop);

}  // namespace ostrevan::terminal
