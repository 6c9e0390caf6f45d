#include <algorithm>
#include <cmath>

#include "player/tags/asf_objects.h"
#include "player/tags/sound.h"

namespace ostrevan::tags {
namespace {

using namespace std::string_view_literals;

constexpr auto audio_stream = "\x40\x9E\x69\xF8\x4D\x5B\xCF\x11\xA8\xFD\x00\x80\x5F\x5C\x44\x2B"sv;

std::string wma_codec(std::uint64_t number) {
    constexpr const char* codecs[] = {"WMA 1", "WMA 2", "WMA Pro", "WMA Lossless"};
    constexpr std::uint64_t first = 0x160;
    return number >= first && number - first < std::size(codecs) ? codecs[number - first] : "WMA";
}

}  // namespace

sound sound_of_asf(file_stream& stream) {
    sound result;
    const std::string header = asf_header_bytes(stream);
    const auto number = [](std::string_view body, std::size_t at, std::size_t size) {
        return static_cast<std::uint32_t>(little_endian(body, at, size));
    };
    for_each_asf_object(std::string_view(header).substr(std::min(header.size(), asf_header_size)), [&](auto id, auto body) {
        if (id == asf_id::file_properties) {
            // In units of 100 ns, with the milliseconds of buffering before the start.
            const auto played = static_cast<double>(little_endian(body, 40, 8)) / 10000;
            const auto buffered = static_cast<double>(little_endian(body, 56, 8));
            result.length = std::max(0.0, std::floor(played - buffered + 0.5) / 1000);
        } else if (id == asf_id::stream_properties && body.starts_with(audio_stream) && result.sample_rate == 0) {
            result.codec = wma_codec(number(body, 54, 2));
            result.channels = number(body, 56, 2);
            result.sample_rate = number(body, 58, 4);
            result.bitrate = static_cast<std::uint32_t>(std::lround(number(body, 62, 4) * 8.0 / 1000));
        }
    });
    return result;
}

}  // namespace ostrevan::tags
