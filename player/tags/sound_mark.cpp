#include "player/tags/sound_mark.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "player/tags/bytes.h"
#include "player/tags/digest.h"
#include "player/tags/flac_blocks.h"
#include "player/tags/outer_tags.h"

namespace ostrevan::tags {
namespace {

constexpr long sample_size = 1024;
/// A file with more pieces in front of its audio is no music.
constexpr int most_chunks = 1000;

/// Never 0.
std::uint64_t mark_of(std::string_view bytes, std::uint64_t number) noexcept {
    digest all;
    all.add(bytes);
    all.add_number(number);
    return std::max<std::uint64_t>(all.value(), 1);
}

long to_long(std::uint64_t number) noexcept { return number > 0x7FFFFFFFFFFF ? 0x7FFFFFFFFFFF : static_cast<long>(number); }

/// The body of the first chunk of that name: four bytes of name and four of size, each body of an even size.
byte_range chunk_in(file_stream& stream, std::string_view name, bool is_big_endian) {
    long at = start_after_id3v2(stream) + 12;
    for (int i = 0; i < most_chunks; ++i) {
        const auto head = read_bytes(stream, at, 8);
        if (head.size() < 8) return {};
        const long size = to_long(is_big_endian ? big_endian(head, 4, 4) : little_endian(head, 4, 4));
        if (head.starts_with(name)) return {at + 8, at + 8 + size};
        at += 8 + size + size % 2;
    }
    return {};
}

byte_range media_atom(file_stream& stream) {
    long at = 0;
    for (int i = 0; i < most_chunks; ++i) {
        const auto head = read_bytes(stream, at, 16);
        if (head.size() < 8) return {};
        const long stated = to_long(big_endian(head, 0, 4));
        const long header = stated == 1 ? 16 : 8;
        const long size = stated == 0 ? stream.length() - at : stated == 1 ? to_long(big_endian(head, 8, 8)) : stated;
        if (size < header) return {};
        // Some writers begin with an empty one.
        if (head.compare(4, 4, "mdat") == 0 && size > header) return {at + header, at + size};
        at += size;
    }
    return {};
}

/// The data object, after the header object.
byte_range asf_data(file_stream& stream) {
    constexpr std::uint64_t size_at = 16;
    const long begin = to_long(little_endian(read_bytes(stream, 0, 24), size_at, 8));
    const long size = to_long(little_endian(read_bytes(stream, begin, 24), size_at, 8));
    return {begin + 24, begin + size};
}

byte_range audio_of(const opened_file& opened) {
    auto& stream = *opened.stream;
    switch (opened.kind) {
        case container::wav:
            return chunk_in(stream, "data", false);
        case container::aiff:
            return chunk_in(stream, "SSND", true);
        case container::mp4:
            return media_atom(stream);
        case container::asf:
            return asf_data(stream);
        case container::flac: {
            const auto blocks = flac_block_places(stream);
            if (blocks.empty()) return {};
            return {blocks.back().at + flac_block_header_size + blocks.back().size, stream.length()};
        }
        default:
            return sound_between_tags(stream);
    }
}

/// The first block of a FLAC file, when the encoder put the digest of the samples there.
std::optional<std::uint64_t> mark_of_flac(file_stream& stream) {
    constexpr std::uint64_t size = 34;
    constexpr std::size_t digest_at = 18;
    const auto block = read_bytes(stream, start_after_id3v2(stream) + 4 + flac_block_header_size, size);
    if (block.size() < size || block.find_first_not_of('\0', digest_at) == block.npos) return std::nullopt;
    return mark_of(block, 0);
}

/// Page numbers change with the tags. The body of the last page, its position and its stream do not.
std::uint64_t mark_of_ogg(file_stream& stream) {
    constexpr std::size_t header_size = 27;
    // Small as a rule; the second is more than the largest.
    for (const long tail_size : {8192, 131072}) {
        const auto tail =
            read_bytes(stream, std::max(0L, stream.length() - tail_size), static_cast<std::uint64_t>(tail_size));
        for (auto at = tail.rfind("OggS"); at != tail.npos; at = at == 0 ? tail.npos : tail.rfind("OggS", at - 1)) {
            const auto page = std::string_view(tail).substr(at);
            if (page.size() < header_size || page[4] != 0) continue;
            const std::size_t body = header_size + static_cast<unsigned char>(page[26]);
            if (page.size() > body) return mark_of(page.substr(body), big_endian(page, 6, 8) ^ big_endian(page, 14, 4));
        }
    }
    return 0;
}

}  // namespace

std::uint64_t sound_mark(const opened_file& opened) {
    auto& stream = *opened.stream;
    if (is_ogg(opened.kind)) return mark_of_ogg(stream);
    if (opened.kind == container::flac)
        if (const auto mark = mark_of_flac(stream)) return *mark;
    auto [begin, end] = audio_of(opened);
    end = std::min(end, stream.length());
    if (begin < 0 || end <= begin) return 0;
    std::array<char, sample_size> sample;
    const long size = std::min(sample_size, end - begin);
    const long got = stream.read_at(sample.data(), size, begin + (end - begin - size) / 2);
    return mark_of({sample.data(), static_cast<std::size_t>(std::max(0L, got))}, static_cast<std::uint64_t>(end - begin));
}

}  // namespace ostrevan::tags
