#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ostrevan/file_info_builder.h"
#include "player/library/cue_sheet.h"
#include "player/library/file_stamp.h"
#include "player/tags/reader.h"

namespace ostrevan::library {

/// Reads the fields and the sound of one audio file; throws with the reason. Called by several threads.
using info_reader = std::function<tags::audio_reading(const std::string& path)>;

struct read_track {
    std::uint32_t subsong = 0;
    file_info info;
};

/// Whether the name is that of a CUE sheet.
bool is_cue_path(std::string_view path) noexcept;

/// A CUE sheet with the paths of its audio instead of their names.
struct located_sheet {
    cue_sheet sheet;                 // cue_track::file is a position in `audio`
    std::vector<std::string> audio;  // each once
};

/// Reads a sheet and finds its audio in the folder of the sheet or below: by name; else by a name that differs in case or
/// extension only, since sheets outlive conversions; and for a sheet with one file, by the name of the sheet. Throws with
/// the reason when the sheet cannot be read or its audio is missing.
located_sheet locate_sheet(const std::string& cue_path);

/// The tracks of a sheet and the audio they were made from.
struct cue_contents {
    std::vector<source_file> sources;
    std::vector<read_track> tracks;
    std::uint64_t sound = 0;  // from the marks of the audio; 0 when one has none
};
cue_contents read_cue(const std::string& cue_path, const info_reader& reader);

/// The tracks of an audio file: subsong 0, or tracks 1 to n of the sheet in its "cuesheet" field.
std::vector<read_track> split_embedded(const file_info_builder& info);

/// The part of a file to play for a track.
struct playable {
    std::string path;
    double start = 0;           // seconds
    std::optional<double> end;  // seconds; empty for the end of the file
};

/// Reads the sheet on the disk. Throws with the reason when it no longer has such a track. [any-thread]
playable resolve_playable(const std::string& path, std::uint32_t subsong, const info_reader& reader);

}  // namespace ostrevan::library
