#include "player/tags/open_file.h"

#include <aifffile.h>
#include <apefile.h>
#include <apetag.h>
#include <fcntl.h>
#include <flacfile.h>
#include <mp4file.h>
#include <mpegfile.h>
#include <sys/stat.h>
#include <trueaudiofile.h>
#include <wavfile.h>
#include <wavpackfile.h>

#include <cerrno>

#include "player/tags/bytes.h"
#include "player/tags/errors.h"
#include "player/tags/flac_blocks.h"
#include "player/tags/limits.h"
#include "player/tags/ogg_comment.h"
#include "player/tags/outer_tags.h"
#include "player/tags/xiph_comment.h"

namespace ostrevan::tags {
namespace {

using file_pointer = std::unique_ptr<TagLib::File>;

template <class File>
file_pointer open_plain(TagLib::IOStream& stream, limited_frames&) {
    return std::make_unique<File>(&stream, true, TagLib::AudioProperties::Fast);
}

template <class File>
file_pointer open_with_frames(TagLib::IOStream& stream, limited_frames& frames) {
    return std::make_unique<File>(&stream, &frames, true, TagLib::AudioProperties::Fast);
}

/// In the order of `container`. Ogg and Windows Media are read and edited without the library.
constexpr file_pointer (*openers[])(TagLib::IOStream&, limited_frames&) = {
    open_with_frames<TagLib::MPEG::File>,
    open_with_frames<TagLib::FLAC::File>,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    open_plain<TagLib::MP4::File>,
    open_plain<TagLib::WavPack::File>,
    open_plain<TagLib::APE::File>,
    open_plain<TagLib::RIFF::WAV::File>,
    open_plain<TagLib::RIFF::AIFF::File>,
    nullptr,
    open_with_frames<TagLib::TrueAudio::File>,
};

void require_regular(const std::string& path, const struct stat& about) {
    if (S_ISDIR(about.st_mode)) throw tag_error(path, "is a folder, not an audio file");
    if (!S_ISREG(about.st_mode)) throw tag_error(path, "is not a regular file (a pipe, socket or device)");
    if (about.st_size == 0) throw tag_error(path, "is empty; replace it by a copy with its audio");
}

void require_no_error(const file_stream& stream) {
    if (stream.error() != 0) throw tag_error(stream.path(), "cannot be read: " + reason_of_errno(stream.error()));
}

bool is_read_here(container kind) { return kind == container::flac || kind == container::asf || is_ogg(kind); }

void read_here(opened_file& opened) {
    if (opened.kind == container::asf) {
        require_limits(opened.kind, *opened.stream);
        opened.sound = sound_of_asf(*opened.stream);
        return;
    }
    const bool is_flac = opened.kind == container::flac;
    opened.xiph_comment =
        is_flac ? read_flac_comment(*opened.stream) : std::optional(read_ogg_comment(opened.kind, *opened.stream));
    if (opened.xiph_comment) require_entries(entries_stated_by(*opened.xiph_comment));
    opened.sound = is_flac ? sound_of_flac(*opened.stream) : sound_of_ogg(opened.kind, *opened.stream);
}

/// FLAC may have tags beside its comment, which count where that holds nothing, or for the statistics in them.
bool has_other_tags(const opened_file& opened, file_stream::access mode) {
    return opened.kind == container::flac && (mode == file_stream::access::write || start_after_id3v2(*opened.stream) > 0 ||
                                              !holds_fields(opened.xiph_comment));
}

void open_with_library(opened_file& opened) {
    require_limits(opened.kind, *opened.stream);
    opened.frames = std::make_unique<limited_frames>();
    opened.stream->seek(0, TagLib::IOStream::Beginning);
    opened.file = openers[static_cast<std::size_t>(opened.kind)](*opened.stream, *opened.frames);
    opened.frames->require_none_refused();
    const auto* properties = opened.file->isValid() ? opened.file->audioProperties() : nullptr;
    if (!is_read_here(opened.kind) && properties != nullptr) opened.sound = sound_of(opened.kind, *properties);
    if (opened.kind != container::true_audio) return;
    if (const auto ape = ape_tag_at_end(*opened.stream))
        opened.ape_tag = std::make_unique<TagLib::APE::Tag>(opened.file.get(), ape->end - ape_footer_size);
}

}  // namespace

system::descriptor open_regular(const std::string& path, file_stream::access mode) {
    struct stat about {};
    if (stat(path.c_str(), &about) != 0) throw tag_error(path, "cannot be opened: " + reason_of_errno(errno));
    require_regular(path, about);
    const int flags = (mode == file_stream::access::write ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    system::descriptor file(open(path.c_str(), flags));
    if (!file) throw tag_error(path, "cannot be opened: " + reason_of_errno(errno));
    // The name may lead to another file by now.
    if (fstat(file.get(), &about) != 0) throw tag_error(path, "cannot be examined: " + reason_of_errno(errno));
    require_regular(path, about);
    return file;
}

opened_file open_audio(const std::string& path, file_stream::access mode) try {
    opened_file result;
    result.stream = std::make_unique<file_stream>(path, open_regular(path, mode), mode);
    const auto kind = detect(*result.stream, path);
    require_no_error(*result.stream);
    if (!kind) throw tag_error(path, "is not an audio file of a supported format");
    result.kind = *kind;
    if (is_read_here(*kind)) read_here(result);
    if (!is_read_here(*kind) || has_other_tags(result, mode)) open_with_library(result);
    require_no_error(*result.stream);
    if (result.sound.sample_rate == 0 || (result.file && !result.file->isValid()))
        throw tag_error(path, "is damaged or not an audio file of a supported format: no " + std::string(name_of(*kind)) +
                                  " sound was found in it");
    return result;
} catch (const edit_error& refusal) {
    throw tag_error(path, refusal.what());
}

}  // namespace ostrevan::tags
