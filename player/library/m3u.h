#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::library {

/// The content of an M3U file: one path a line, as bytes; lines with "#" are comments. It may come from anywhere.
struct m3u_contents {
    /// Paths, those that are relative below the folder of the list; or `path|subsong`.
    std::vector<std::string> places;
    /// One sentence for each line that is left out.
    std::vector<std::string> problems;
};

/// Throws std::runtime_error when the text is of another format.
m3u_contents parse_m3u(std::string_view text, const std::string& folder);

struct m3u_entry {
    std::string path;
    unsigned subsong = 0;
    double seconds = 0;  ///< 0 when unknown
    std::string title{};
};

/// A path that cannot be a line of its own is written as a `file://` address.
std::string m3u_text(std::span<const m3u_entry> entries);

}  // namespace ostrevan::library
