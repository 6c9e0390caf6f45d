#include "player/tags/reader.h"

#include <new>

#include "player/tags/errors.h"
#include "player/tags/sound_mark.h"
#include "player/tags/tag_fields.h"

namespace ostrevan::tags {

file_info_builder read_file(const std::string& path) try {
    return info_of(open_audio(path));
} catch (const std::bad_alloc&) {
    throw tag_error(path, "needs more memory than there is; it may be damaged");
}

audio_reading read_audio(const std::string& path) {
    const auto opened = open_audio(path);
    return {info_of(opened), sound_mark(opened)};
}

}  // namespace ostrevan::tags
