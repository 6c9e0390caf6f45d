#pragma once

#include <cstdint>
#include <string>

#include "player/tags/file_stream.h"
#include "player/tags/formats.h"

namespace TagLib {
class AudioProperties;
}

namespace ostrevan::tags {

/// Properties of a file's sound; 0 where unknown.
struct sound {
    /// Seconds.
    double length = 0;
    std::uint32_t sample_rate = 0;
    std::uint32_t channels = 0;
    /// Bits per second in thousands.
    std::uint32_t bitrate = 0;
    std::string codec;
};

sound sound_of(container kind, const TagLib::AudioProperties& properties);

/// Of a Windows Media file, from its header. In a damaged header the library takes any time and memory.
sound sound_of_asf(file_stream& stream);

/// Of an Ogg file, from its first packet and its last page: the library takes twice as long over it as over all the rest.
sound sound_of_ogg(container kind, file_stream& stream);

}  // namespace ostrevan::tags
