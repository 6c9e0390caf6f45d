#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ostrevan::library {

/// The longest text, in bytes, that becomes a field of the tracks. What holds for the disc is stored with each of its
/// tracks, up to 999 times.
inline constexpr std::size_t longest_cue_value = 1024;

/// Fields in the order of the sheet, under the names that tags have: "title", "artist", "date", "genre", "isrc". Of several
/// lines for one field the last one counts.
using cue_fields = std::vector<std::pair<std::string_view, std::string>>;

struct cue_track {
    std::uint32_t number = 0;
    std::size_t file = 0;       // position in cue_sheet::files
    double start = 0;           // INDEX 01, seconds from the start of the file
    std::optional<double> end;  // where the next track of the same file starts; nothing for its last one
    cue_fields fields;
};

/// What a CUE sheet says of one disc.
struct cue_sheet {
    std::vector<std::string> files;  // those with audio tracks, as written, UTF-8
    cue_fields fields;               // of the whole disc: "title" is the album, "artist" the album artist
    std::vector<cue_track> tracks;   // audio only, in the order of the sheet
};

/// The sheet cannot be understood; the text says where and why.
class cue_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a sheet in UTF-8, UTF-16 with a byte order mark, or Latin-1. Commands that do not matter here are passed over, as
/// are data tracks, tracks without INDEX 01 and texts longer than `longest_cue_value`. Throws cue_error when times run
/// backwards, a number occurs twice, or a line that matters is not of its form.
cue_sheet parse_cue(std::string_view bytes);

}  // namespace ostrevan::library
