#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "ostrevan/file_info_builder.h"

namespace ostrevan::tags {

/// The fields and the sound of one audio file. Field names are lower-case; docs/tag-storage.md says where each is found and
/// which tag of several wins. The length comes from sample counts where the format has them, else in milliseconds.
/// [any-thread] Several files may be read at once. Never waits for a pipe or device.
/// @throws tag_error with the file and the reason.
file_info_builder read_file(const std::string& path);

/// What `read_file` reads, with the mark of the encoded audio (player/tags/sound_mark.h); 0 when none was taken.
struct audio_reading {
    audio_reading(file_info_builder read, std::uint64_t mark = 0) : info(std::move(read)), sound(mark) {}

    file_info_builder info;
    std::uint64_t sound;
};
audio_reading read_audio(const std::string& path);

}  // namespace ostrevan::tags
