#include "player/tags/xiph_reader.h"

#include <algorithm>
#include <cmath>

#include "player/tags/bytes.h"
#include "player/tags/edit_bytes.h"
#include "player/tags/field_names.h"
#include "player/tags/xiph_comment.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t page_header_size = 27;
constexpr std::size_t stream_block_size = 34;
constexpr std::string_view picture_names[] = {"METADATA_BLOCK_PICTURE", "COVERART"};

/// Takes the packets of the first logical stream of an Ogg file one after another.
class packet_reader {
public:
    explicit packet_reader(file_stream& stream) : stream_(stream), at_(start_behind_id3v2(stream)) {}

    /// Empty at the end, and where something is damaged.
    std::string next() {
        std::string packet;
        for (bool complete = false; !complete;) {
            if (segment_ == segments_.size() && !read_page()) return {};
            std::uint64_t size = 0;
            while (segment_ < segments_.size() && !complete) {
                const auto part = static_cast<unsigned char>(segments_[segment_++]);
                size += part;
                complete = part < 255;
            }
            packet += read_bytes(stream_, body_, size);
            body_ += static_cast<long>(size);
        }
        return packet;
    }

private:
    /// The next page of the stream that has segments; pages of other streams in the same file are passed over.
    bool read_page() {
        for (;;) {
            const std::string header = read_bytes(stream_, at_, page_header_size);
            if (header.size() < page_header_size || !header.starts_with("OggS")) return false;
            segments_ =
                read_bytes(stream_, at_ + static_cast<long>(page_header_size), static_cast<unsigned char>(header[26]));
            segment_ = 0;
            body_ = at_ + static_cast<long>(page_header_size + segments_.size());
            at_ = body_;
            for (const char size : segments_) at_ += static_cast<unsigned char>(size);
            const std::string serial = header.substr(14, 4);
            if (serial_.empty()) serial_ = serial;
            if (serial == serial_ && !segments_.empty()) return true;
        }
    }

    file_stream& stream_;
    long at_;
    long body_ = 0;
    std::string serial_;
    std::string segments_;
    std::size_t segment_ = 0;
};

std::optional<std::string> behind(const std::string& packet, std::string_view start) {
    if (!packet.starts_with(start)) return {};
    return packet.substr(start.size());
}

std::optional<std::string> comment_in_flac_packets(packet_reader& packets) {
    for (std::string block = packets.next(); !block.empty(); block = packets.next()) {
        if ((block[0] & 0x7F) == flac_comment_block && block.size() >= 4) return block.substr(4);
        if ((block[0] & 0x80) != 0) break;
    }
    return {};
}

bool is_utf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i]);
        const std::size_t more = first < 0x80                    ? 0
                                 : first >= 0xC2 && first < 0xE0 ? 1
                                 : (first & 0xF0) == 0xE0        ? 2
                                 : first >= 0xF0 && first < 0xF5 ? 3
                                                                 : 4;
        if (more == 4 || text.size() - i <= more) return false;
        for (std::size_t k = 1; k <= more; ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return false;
        i += more + 1;
    }
    return true;
}

/// Old programs wrote Latin-1 where UTF-8 belongs.
std::string as_utf8(std::string_view text) {
    return is_utf8(text) ? std::string(text) : TagLib::String(std::string(text), TagLib::String::Latin1).to8Bit(true);
}

}  // namespace

std::vector<flac_block_place> flac_block_places(file_stream& stream) {
    std::vector<flac_block_place> blocks;
    long at = start_behind_id3v2(stream) + 4;
    for (bool last = false; !last;) {
        const std::string header = read_bytes(stream, at, flac_block_header_size);
        const auto first = header.empty() ? 0 : static_cast<unsigned char>(header[0]);
        blocks.push_back({at, first & 0x7F, static_cast<long>(big_endian(header, 1, 3))});
        at += flac_block_header_size + blocks.back().size;
        if (header.size() < flac_block_header_size || at > stream.length()) return {};
        last = (first & 0x80) != 0;
    }
    return blocks;
}

sound sound_of_flac(file_stream& stream) {
    const auto blocks = flac_block_places(stream);
    if (blocks.empty() || blocks.front().type != flac_stream_block ||
        blocks.front().size < static_cast<long>(stream_block_size))
        return {};
    const std::string body = read_bytes(stream, blocks.front().at + flac_block_header_size, stream_block_size);
    const auto packed = big_endian(body, 10, 8);  // 20 bits rate, 3 channels, 5 sample size, 36 samples
    sound result{.length = 0,
                 .sample_rate = static_cast<std::uint32_t>(packed >> 44),
                 .channels = static_cast<std::uint32_t>(packed >> 41 & 7) + 1,
                 .bitrate = 0,
                 .codec = "FLAC"};
    const auto samples = packed & 0xFFFFFFFFF;
    if (samples == 0 || result.sample_rate == 0) return result;
    result.length = static_cast<double>(samples) / result.sample_rate;
    const long sound_size = stream.length() - blocks.back().at - flac_block_header_size - blocks.back().size;
    result.bitrate = static_cast<std::uint32_t>(std::lround(static_cast<double>(sound_size) * 8 / result.length / 1000));
    return result;
}

std::optional<std::string> read_xiph_comment(container kind, file_stream& stream) {
    if (kind == container::flac) {
        for (const auto& block : flac_block_places(stream))
            if (block.type == flac_comment_block)
                return read_bytes(stream, block.at + flac_block_header_size, static_cast<std::uint64_t>(block.size));
        return {};
    }
    packet_reader packets(stream);
    packets.next();
    switch (kind) {
        case container::vorbis:
            return behind(packets.next(), "\x03vorbis");
        case container::opus:
            return behind(packets.next(), "OpusTags");
        case container::speex:
            return packets.next();
        default:
            return comment_in_flac_packets(packets);
    }
}

std::uint64_t entries_stated_by(const std::string& comment) {
    return little_endian(comment, 4 + little_endian(comment, 0, 4), 4);
}

tag_entries entries_of_comment(const std::string& comment) {
    tag_entries entries;
    for (const auto& entry : take_apart_xiph(comment).entries) {
        const auto equals = entry.find('=');
        if (equals == std::string::npos || equals + 1 == entry.size()) continue;
        const std::string key = ascii_upper(std::string_view(entry).substr(0, equals));
        if (std::ranges::find(picture_names, key) != std::end(picture_names)) continue;
        values_for(entries, key).push_back(as_utf8(std::string_view(entry).substr(equals + 1)));
    }
    return entries;
}

bool holds_fields(const std::optional<std::string>& comment) noexcept try {
    return comment && !entries_of_comment(*comment).empty();
} catch (const std::exception&) {
    return false;
}

}  // namespace ostrevan::tags
