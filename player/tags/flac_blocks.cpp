// The library offers no way to save a FLAC file with other bytes in the comment than those that it makes itself; what these
// lose is said in xiph_comment.cpp.
#include "player/tags/flac_blocks.h"

#include <algorithm>
#include <cmath>

#include "player/tags/bytes.h"
#include "player/tags/errors.h"
#include "player/tags/outer_tags.h"
#include "player/tags/xiph_comment.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t stream_block_size = 34;
constexpr std::size_t flac_room_to_grow = 1024;

struct flac_block {
    int type;
    std::string body;
};

std::vector<flac_block> blocks_of(file_stream& stream) {
    std::vector<flac_block> blocks;
    for (const auto& place : flac_block_places(stream))
        blocks.push_back(
            {place.type, read_bytes(stream, place.at + flac_block_header_size, static_cast<std::uint64_t>(place.size))});
    if (blocks.empty()) throw edit_error("its metadata blocks are cut off");
    return blocks;
}

std::size_t size_of(const std::vector<flac_block>& blocks) {
    std::size_t size = 0;
    for (const auto& block : blocks) size += flac_block_header_size + block.body.size();
    return size;
}

std::string bytes_of(const std::vector<flac_block>& blocks) {
    std::string bytes;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i].body.size() > largest_flac_block)
            throw edit_error("its tags would grow beyond the 16 MB that FLAC allows");
        const unsigned last = i + 1 == blocks.size() ? 0x80u : 0u;
        bytes += as_big_endian(last | static_cast<unsigned>(blocks[i].type), 1) + as_big_endian(blocks[i].body.size(), 3) +
                 blocks[i].body;
    }
    return bytes;
}

/// Lets padding take up the difference, so that the sound need not move.
void fit(std::vector<flac_block>& blocks, std::size_t old_size) {
    const auto padding = std::ranges::find(blocks, flac_padding_block, &flac_block::type);
    const std::size_t new_size = size_of(blocks);
    if (padding == blocks.end()) {
        if (new_size == old_size) return;
        const bool exact = new_size + flac_block_header_size <= old_size;
        blocks.push_back({flac_padding_block,
                          std::string(exact ? old_size - new_size - flac_block_header_size : flac_room_to_grow, '\0')});
        return;
    }
    const std::size_t without = new_size - padding->body.size();
    padding->body.assign(std::min(without <= old_size ? old_size - without : flac_room_to_grow, largest_flac_block), '\0');
}

}  // namespace

std::vector<flac_block_place> flac_block_places(file_stream& stream) {
    std::vector<flac_block_place> blocks;
    long at = start_after_id3v2(stream) + 4;
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

std::optional<std::string> read_flac_comment(file_stream& stream) {
    for (const auto& block : flac_block_places(stream))
        if (block.type == flac_comment_block)
            return read_bytes(stream, block.at + flac_block_header_size, static_cast<std::uint64_t>(block.size));
    return {};
}

void edit_flac_comment(file_stream& stream, const tag_changes& changes) {
    const long start = start_after_id3v2(stream) + 4;
    auto blocks = blocks_of(stream);
    const std::size_t old_size = size_of(blocks);
    auto comment = std::ranges::find(blocks, flac_comment_block, &flac_block::type);
    if (comment == blocks.end()) comment = blocks.insert(blocks.begin() + 1, {flac_comment_block, ""});
    comment->body = edit_xiph(comment->body, changes);
    fit(blocks, old_size);
    replace_bytes(stream, bytes_of(blocks), start, old_size);
}

}  // namespace ostrevan::tags
