#pragma once

#include <tag.h>
#include <tfile.h>

#include <memory>
#include <optional>
#include <string>

#include "player/tags/file_stream.h"
#include "player/tags/formats.h"
#include "player/tags/limited_frames.h"
#include "player/tags/sound.h"

namespace ostrevan::tags {

/// An audio file under TagLib. The stream and the frames outlive the file that uses them.
struct opened_file {
    std::unique_ptr<file_stream> stream;
    container kind{};
    std::unique_ptr<limited_frames> frames;
    /// Null where reading needs no library: Ogg, Windows Media, and FLAC with nothing but a Vorbis comment.
    std::unique_ptr<TagLib::File> file;
    ostrevan::tags::sound sound;
    /// The Vorbis comment of FLAC and Ogg, as in the file.
    std::optional<std::string> xiph_comment;
    /// The APE tag at the end of a True Audio file, which the library does not look for there.
    std::unique_ptr<TagLib::Tag> ape_tag;
};

/// Opens a regular file. Refuses pipes, devices and folders without opening them, so it never waits.
/// @throws tag_error
system::descriptor open_regular(const std::string& path, file_stream::access mode);

/// Opens the file in the format that its bytes show. @throws tag_error: no such file, not permitted, empty, no supported
/// audio in it.
opened_file open_audio(const std::string& path, file_stream::access mode = file_stream::access::read);

}  // namespace ostrevan::tags
