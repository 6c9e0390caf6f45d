#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TagLib {
class IOStream;
}

namespace ostrevan::tags {

/// The containers that are read and rewritten.
enum class container { mpeg, flac, vorbis, opus, speex, ogg_flac, mp4, wavpack, monkeys_audio, wav, aiff, asf, true_audio };

/// Name for messages, such as "MP4".
std::string_view name_of(container kind) noexcept;

bool is_ogg(container kind) noexcept;

/// Lower-case extensions without the dot, of all formats.
std::vector<std::string> supported_extensions();

/// By the name alone; case does not matter.
bool has_supported_extension(std::string_view path) noexcept;

/// Judged by the bytes. The extension decides only for MPEG audio, whose frames have no distinctive beginning.
std::optional<container> detect(TagLib::IOStream& stream, std::string_view path);

}  // namespace ostrevan::tags
