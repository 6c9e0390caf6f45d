#include <algorithm>
#include <cmath>
#include <cstring>

#include "player/tags/bytes.h"
#include "player/tags/outer_tags.h"
#include "player/tags/sound.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t smallest_page = 27;
constexpr long largest_page = 27 + 255 + 255 * 255;
constexpr long window = 8192;

/// The position in samples that the last page of the stream states; -1 when it cannot be found.
std::int64_t last_position(file_stream& stream, std::string_view serial) {
    const long end = stream.length();
    // Pages are small as a rule, so a look at the end of the file finds one; the largest is tried before giving up.
    for (long size = std::min(window, end);; size = std::min(size * 4, std::min(2 * largest_page, end))) {
        const std::string tail = read_bytes(stream, end - size, static_cast<std::uint64_t>(size));
        const char* const begin = tail.data();
        for (const void* found = begin + tail.size();
             (found = memrchr(begin, 'O', static_cast<std::size_t>(static_cast<const char*>(found) - begin)));) {
            const auto at = static_cast<std::size_t>(static_cast<const char*>(found) - begin);
            if (at + smallest_page > tail.size() || tail.compare(at, 4, "OggS") != 0 ||
                tail.compare(at + 14, 4, serial) != 0)
                continue;
            // A page on which no packet ends has no position.
            if (const auto position = static_cast<std::int64_t>(little_endian(tail, at + 6, 8)); position != -1)
                return position;
        }
        if (size >= std::min(2 * largest_page, end)) return -1;
    }
}

std::uint32_t number(std::string_view bytes, std::size_t at, std::size_t size) {
    return static_cast<std::uint32_t>(little_endian(bytes, at, size));
}

}  // namespace

sound sound_of_ogg(container kind, file_stream& stream) {
    const long start = start_after_id3v2(stream);
    const std::string page = read_bytes(stream, start, smallest_page + 255 + 255);
    const std::size_t segments = static_cast<unsigned char>(page[26]);
    const auto packet = std::string_view(page).substr(std::min(page.size(), smallest_page + segments));
    sound result;
    std::int64_t skipped = 0;
    std::uint64_t nominal = 0;
    switch (kind) {
        case container::vorbis:
            result = {.length = 0,
                      .sample_rate = number(packet, 12, 4),
                      .channels = number(packet, 11, 1),
                      .bitrate = 0,
                      .codec = "Vorbis"};
            nominal = number(packet, 20, 4);
            break;
        case container::opus:
            // Opus counts in 48 kHz whatever went in, and says how many samples the decoder needs to settle.
            result = {.length = 0, .sample_rate = 48000, .channels = number(packet, 9, 1), .bitrate = 0, .codec = "Opus"};
            skipped = number(packet, 10, 2);
            break;
        case container::speex:
            result = {.length = 0,
                      .sample_rate = number(packet, 36, 4),
                      .channels = number(packet, 48, 4),
                      .bitrate = 0,
                      .codec = "Speex"};
            break;
        default: {
            // After "\x7F" "FLAC", version, count, "fLaC" and a block header comes the block that FLAC files begin with.
            const auto rate_and_more = big_endian(packet, 27, 8);
            result = {.length = 0,
                      .sample_rate = static_cast<std::uint32_t>(rate_and_more >> 44),
                      .channels = static_cast<std::uint32_t>(rate_and_more >> 41 & 7) + 1,
                      .bitrate = 0,
                      .codec = "FLAC"};
        }
    }
    const auto position = last_position(stream, std::string_view(page).substr(14, 4));
    if (position > skipped && result.sample_rate > 0)
        result.length = static_cast<double>(position - skipped) / result.sample_rate;
    const auto is_rate = [](std::uint64_t bits) { return bits > 0 && bits < 0x80000000; };
    const double bits = is_rate(nominal)    ? static_cast<double>(nominal)
                        : result.length > 0 ? static_cast<double>(stream.length()) * 8 / result.length
                                            : 0;
    result.bitrate = static_cast<std::uint32_t>(std::lround(bits / 1000));
    return result;
}

}  // namespace ostrevan::tags
