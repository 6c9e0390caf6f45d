#include <algorithm>

#include "player/tags/edit_tags.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t header_size = 4;
constexpr std::size_t largest_block = (1u << 24) - 1;
constexpr std::size_t room_to_grow = 1024;
constexpr int padding_type = 1;
constexpr int comment_type = 4;

struct flac_block {
    int type;
    std::string body;
};

std::vector<flac_block> blocks_of(file_stream& stream, long start) {
    std::vector<flac_block> blocks;
    for (bool last = false; !last;) {
        const std::string header = read_bytes(stream, start, header_size);
        if (header.size() < header_size) throw edit_error("its metadata blocks are cut off");
        const auto first = static_cast<unsigned char>(header[0]);
        const auto size = big_endian(header, 1, 3);
        blocks.push_back({first & 0x7F, read_bytes(stream, start + static_cast<long>(header_size), size)});
        if (blocks.back().body.size() != size) throw edit_error("its metadata blocks are cut off");
        last = (first & 0x80) != 0;
        start += static_cast<long>(header_size + size);
    }
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
    const auto padding = std::ranges::find(blocks, padding_type, &flac_block::type);
    const std::size_t new_size = size_of(blocks);
    if (padding == blocks.end()) {
        if (new_size == old_size) return;
        const bool exact = new_size + header_size <= old_size;
        blocks.push_back({padding_type, std::string(exact ? old_size - new_size - header_size : room_to_grow, '\0')});
        return;
    }
    const std::size_t without = new_size - padding->body.size();
    padding->body.assign(std::min(without <= old_size ? old_size - without : room_to_grow, largest_block), '\0');
}

}  // namespace

void edit_flac_comment(file_stream& stream, const tag_changes& changes) {
    const long start = start_behind_id3v2(stream) + 4;
    auto blocks = blocks_of(stream, start);
    const std::size_t old_size = size_of(blocks);
    auto comment = std::ranges::find(blocks, comment_type, &flac_block::type);
    if (comment == blocks.end()) comment = blocks.insert(blocks.begin() + 1, {comment_type, ""});
    comment->body = edit_xiph(comment->body, changes);
    fit(blocks, old_size);
    replace_bytes(stream, put_together(blocks), start, old_size);
}

}  // namespace ostrevan::tags
