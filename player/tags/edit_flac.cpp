#include <algorithm>

#include "player/tags/edit_tags.h"
#include "player/tags/xiph_reader.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t header_size = flac_block_header_size;
constexpr std::size_t largest_block = (1u << 24) - 1;
constexpr std::size_t room_to_grow = 1024;

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
    for (const auto& block : blocks) size += header_size + block.body.size();
    return size;
}

std::string put_together(const std::vector<flac_block>& blocks) {
    std::string bytes;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i].body.size() > largest_block) throw edit_error("its tags would grow beyond the 16 MB that FLAC allows");
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
        const bool exact = new_size + header_size <= old_size;
        blocks.push_back({flac_padding_block, std::string(exact ? old_size - new_size - header_size : room_to_grow, '\0')});
        return;
    }
    const std::size_t without = new_size - padding->body.size();
    padding->body.assign(std::min(without <= old_size ? old_size - without : room_to_grow, largest_block), '\0');
}

}  // namespace

void edit_flac_comment(file_stream& stream, const tag_changes& changes) {
    const long start = start_behind_id3v2(stream) + 4;
    auto blocks = blocks_of(stream);
    const std::size_t old_size = size_of(blocks);
    auto comment = std::ranges::find(blocks, flac_comment_block, &flac_block::type);
    if (comment == blocks.end()) comment = blocks.insert(blocks.begin() + 1, {flac_comment_block, ""});
    comment->body = edit_xiph(comment->body, changes);
    fit(blocks, old_size);
    replace_bytes(stream, put_together(blocks), start, old_size);
}

}  // namespace ostrevan::tags
