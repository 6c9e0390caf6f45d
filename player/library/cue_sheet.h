#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ostrevan::library {

/// The longest text, in bytes, that becomes a field. Fields of the disc are stored with each of up to 999 tracks.
inline constexpr std::size_t longest_cue_value = 1024;

/// Fields in sheet order, under the names of tags: "title", "artist", "date", "genre", "isrc". The last of several lines
/// for one field wins.
using cue_fields = std::vector<std::pair<std::string_view, std::string>>;

struct cue_track {
    std::uint32_t number = 0;
    std::size_t file = 0;       // position in cue_sheet::files
    double start = 0;           // INDEX 01, seconds from the start of the file
    std::optional<double> end;  // start of the next track of the same file; empty for the last
    cue_fields fields;
};

/// The content of a CUE sheet, for one disc.
struct cue_sheet {
    std::vector<std::string> files;  // those with audio tracks, as written, UTF-8
    cue_fields fields;               // of the whole disc: "title" is the album, "artist" the album artist
    std::vector<cue_track> tracks;   // audio only, in the order of the sheet
};

/// The sheet cannot be understood; the text gives the line and the reason.
class cue_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a sheet in UTF-8, UTF-16 with a byte order mark, or Latin-1. Skips irrelevant commands, data tracks, tracks
/// without INDEX 01 and texts longer than `longest_cue_value`. Throws cue_error for times that run backwards, repeated
/// numbers and malformed lines.
cue_sheet parse_cue(std::string_view bytes);

}  // namespace ostrevan::library
