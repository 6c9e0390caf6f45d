#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// The tracks of a command: locations (`path`, `path|subsong`, a folder) or all that match a query.
struct track_arguments {
    std::vector<std::string> paths{};
    std::optional<std::string> where{};

    /// Declares the arguments.
    void declare(declared_command& command);
};

/// Whether a command runs although one of its tracks is missing. One that changes something should not.
enum class on_missing { stop, go_on };

/// The tracks named by a command line, without files that are not audio by their names. Throws `system::user_error` when
/// there are none, or the query has a mistake.
metadb_handle_list tracks_of(run_context& context, const track_arguments& arguments, on_missing missing = on_missing::stop);

}  // namespace ostrevan::terminal
