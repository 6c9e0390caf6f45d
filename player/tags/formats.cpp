#include "player/tags/formats.h"

#include <algorithm>

#include "nuv/text.h"
#include "player/tags/bytes.h"
#include "player/tags/outer_tags.h"

namespace ostrevan::tags {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view format_names[] = {"MP3",      "FLAC",          "Ogg Vorbis", "Opus",           "Speex",
                                             "Ogg FLAC", "MP4",           "WavPack",    "Monkey's Audio", "WAV",
                                             "AIFF",     "Windows Media", "True Audio"};

constexpr std::string_view extensions[] = {"mp3", "mp2", "flac", "ogg", "oga",  "opus", "spx", "m4a", "m4b", "mp4",
                                           "wv",  "ape", "wav",  "aif", "aiff", "aifc", "wma", "asf", "tta"};
constexpr std::string_view mpeg_extensions[] = {"mp3", "mp2"};

/// Bytes at an offset that tell a container.
struct signature {
    container kind;
    std::size_t offset;
    std::string_view bytes;
};

constexpr signature signatures[] = {
    {container::flac, 0, "fLaC"},       {container::mp4, 4, "ftyp"},
    {container::wavpack, 0, "wvpk"},    {container::monkeys_audio, 0, "MAC "},
    {container::wav, 8, "WAVE"},        {container::aiff, 8, "AIFF"},
    {container::aiff, 8, "AIFC"},       {container::asf, 0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv},
    {container::true_audio, 0, "TTA1"}, {container::true_audio, 0, "TTA2"},
};

/// The beginning of the first packet of an Ogg stream.
constexpr signature ogg_signatures[] = {
    {container::vorbis, 0, "\x01vorbis"},
    {container::opus, 0, "OpusHead"},
    {container::speex, 0, "Speex   "},
    {container::ogg_flac, 0,
     "\x7F"
     "FLAC"},
};

template <std::size_t N>
std::optional<container> match(const signature (&table)[N], std::string_view head) {
    for (const auto& each : table)
        if (head.size() >= each.offset && head.substr(each.offset).starts_with(each.bytes)) return each.kind;
    return {};
}

std::string_view extension_of(std::string_view path) noexcept {
    const auto name = nuv::file_name_of(path);
    const auto dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
}

template <std::size_t N>
bool contains_nocase(const std::string_view (&list)[N], std::string_view text) noexcept {
    return std::ranges::any_of(list, [&](std::string_view each) { return nuv::equal_ascii_nocase(each, text); });
}

bool is_mpeg_frame(std::string_view head) noexcept {
    return head.size() >= 2 && head[0] == '\xFF' && (static_cast<unsigned char>(head[1]) & 0xE0) == 0xE0;
}

}  // namespace

std::string_view name_of(container kind) noexcept { return format_names[static_cast<std::size_t>(kind)]; }

std::vector<std::string> supported_extensions() { return {std::begin(extensions), std::end(extensions)}; }

bool has_supported_extension(std::string_view path) noexcept { return contains_nocase(extensions, extension_of(path)); }

bool is_ogg(container kind) noexcept {
    return kind == container::vorbis || kind == container::opus || kind == container::speex || kind == container::ogg_flac;
}

std::optional<container> detect(TagLib::IOStream& stream, std::string_view path) {
    const long start = start_after_id3v2(stream);
    const std::string head = read_bytes(stream, start, 64);
    if (head.starts_with("OggS") && head.size() >= 28) {
        const auto segments = static_cast<unsigned char>(head[26]);
        return match(ogg_signatures, std::string_view(head).substr(std::min<std::size_t>(27u + segments, head.size())));
    }
    if (const auto found = match(signatures, head)) return found;
    if (is_mpeg_frame(head) || contains_nocase(mpeg_extensions, extension_of(path))) return container::mpeg;
    return {};
}

}  // namespace ostrevan::tags
