#include "player/tags/encoded_sound.h"

#include <algorithm>
#include <vector>

#include "player/tags/asf_header.h"
#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"
#include "player/tags/flac_blocks.h"
#include "player/tags/outer_tags.h"

namespace ostrevan::tags {
namespace {

constexpr long block_size = 1 << 18;
constexpr long chunk_header_size = 8;

/// The blocks that are neither tags nor padding, and what comes after the last block.
void add_flac_sound(digest& to, file_stream& stream) {
    const auto blocks = flac_block_places(stream);
    if (blocks.empty()) throw edit_error("its metadata blocks are cut off");
    for (const auto& block : blocks) {
        if (block.type == flac_comment_block || block.type == flac_padding_block) continue;
        to.add_number(static_cast<std::uint64_t>(block.type));
        add_range(to, stream, block.at + flac_block_header_size, block.at + flac_block_header_size + block.size);
    }
    add_range(to, stream, blocks.back().at + flac_block_header_size + blocks.back().size, stream.length());
}

/// The chunks of a WAV or AIFF file except its tag, and the bytes after the end stated in its header.
void add_chunks(digest& to, file_stream& stream, std::uint64_t (*number)(std::string_view, std::size_t, std::size_t)) {
    const long length = stream.length();
    const long stated_end = chunk_header_size + static_cast<long>(number(read_bytes(stream, 4, 4), 0, 4));
    const long end = std::min(stated_end, length);
    for (long at = 12; at + chunk_header_size <= end;) {
        const std::string head = read_bytes(stream, at, static_cast<std::uint64_t>(chunk_header_size));
        const long body = at + chunk_header_size;
        const long size = static_cast<long>(number(head, 4, 4));
        if (ascii_upper(head.substr(0, 4)) != "ID3 ") {
            to.add(head);
            add_range(to, stream, body, std::min(body + size, end));
        }
        at = body + size + size % 2;
    }
    add_range(to, stream, end, length);
    // The last byte of padding may be missing.
    to.add_number(stated_end > length + 1 ? 1 : 0);
}

void add_asf_sound(digest& to, file_stream& stream) {
    const auto header = read_asf_header(stream);
    to.add(bytes_without_tags(header));
    add_range(to, stream, static_cast<long>(header.size), stream.length());
}

}  // namespace

void add_range(digest& to, file_stream& stream, long begin, long end) {
    std::vector<char> buffer(static_cast<std::size_t>(std::clamp(end - begin, 0L, block_size)));
    long at = begin;
    while (at < end) {
        const long got = stream.read_at(buffer.data(), std::min(block_size, end - at), at);
        if (got <= 0) break;
        to.add({buffer.data(), static_cast<std::size_t>(got)});
        at += got;
    }
    to.add_number(static_cast<std::uint64_t>(at - begin));
}

std::uint64_t digest_of_sound(container kind, file_stream& stream) {
    digest result;
    switch (kind) {
        case container::mpeg:
        case container::true_audio:
        case container::wavpack:
        case container::monkeys_audio: {
            const auto [begin, end] = sound_between_tags(stream);
            add_range(result, stream, begin, end);
            break;
        }
        case container::flac:
            add_flac_sound(result, stream);
            break;
        case container::vorbis:
        case container::opus:
        case container::speex:
        case container::ogg_flac:
            add_ogg_sound(result, kind, stream);
            break;
        case container::wav:
            add_chunks(result, stream, little_endian);
            break;
        case container::aiff:
            add_chunks(result, stream, big_endian);
            break;
        case container::mp4:
            add_mp4_sound(result, stream);
            break;
        case container::asf:
            add_asf_sound(result, stream);
            break;
    }
    return result.value();
}

}  // namespace ostrevan::tags
