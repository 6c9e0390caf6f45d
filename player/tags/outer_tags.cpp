#include "player/tags/outer_tags.h"

#include <id3v2header.h>

#include "player/tags/bytes.h"

namespace ostrevan::tags {
namespace {

constexpr long id3v1_size = 128;
constexpr std::string_view ape_preamble = "APETAGEX";

}  // namespace

long start_after_id3v2(TagLib::IOStream& stream) {
    constexpr std::size_t size = 10;
    long start = 0;
    for (std::string head = read_bytes(stream, 0, size); head.starts_with("ID3") && head.size() == size;
         head = read_bytes(stream, start, size))
        start += static_cast<long>(TagLib::ID3v2::Header(to_vector(head)).completeTagSize());
    return start;
}

long end_before_id3v1(TagLib::IOStream& stream) {
    const long end = stream.length();
    if (end < id3v1_size || read_bytes(stream, end - id3v1_size, 3) != "TAG") return end;
    // An APE tag of 131 bytes has the "TAG" of its first word there.
    const long ape = end - id3v1_size - 3;
    return ape >= 0 && read_bytes(stream, ape, ape_preamble.size()) == ape_preamble ? end : end - id3v1_size;
}

std::optional<byte_range> ape_tag_at_end(TagLib::IOStream& stream) {
    const long end = end_before_id3v1(stream);
    if (end < ape_footer_size) return {};
    const std::string footer = read_bytes(stream, end - ape_footer_size, static_cast<std::uint64_t>(ape_footer_size));
    if (!footer.starts_with(ape_preamble)) return {};
    const bool has_header = (little_endian(footer, 20, 4) & 0x80000000) != 0;
    return byte_range{end - static_cast<long>(little_endian(footer, 12, 4)) - (has_header ? ape_footer_size : 0), end};
}

byte_range sound_between_tags(TagLib::IOStream& stream) {
    const auto ape = ape_tag_at_end(stream);
    return {start_after_id3v2(stream), ape ? ape->begin : end_before_id3v1(stream)};
}

}  // namespace ostrevan::tags
