#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

constexpr long header_size = 12;
constexpr long chunk_header_size = 8;
constexpr std::uint64_t largest_file = 0xFFFFFFFF;

struct byte_order {
    bool big_endian_sizes;

    [[nodiscard]] std::uint64_t read(const std::string& bytes, std::size_t at) const {
        return big_endian_sizes ? big_endian(bytes, at, 4) : little_endian(bytes, at, 4);
    }
    [[nodiscard]] std::string write(std::uint64_t number) const {
        return big_endian_sizes ? as_big_endian(number, 4) : as_little_endian(number, 4);
    }
};

/// Where the tag's chunk is, or where a new one goes.
struct chunk_place {
    long at = 0;
    /// Of the whole chunk with its padding byte; 0 when there is none yet.
    long size = 0;
    std::string id;
    std::string tag;
};

chunk_place find_tag_chunk(file_stream& stream, byte_order order) {
    const std::string head = read_bytes(stream, 0, static_cast<std::uint64_t>(header_size));
    if (head.substr(0, 4) != (order.big_endian_sizes ? "FORM" : "RIFF"))
        throw edit_error("its chunks are of a kind that cannot be edited (RF64 or the like)");
    const long end = chunk_header_size + static_cast<long>(order.read(head, 4));
    if (end > stream.length() + 1)
        throw edit_error("its header announces more data than there is; let an audio editor save it anew");
    for (long at = header_size; at + chunk_header_size <= end;) {
        const std::string chunk = read_bytes(stream, at, static_cast<std::uint64_t>(chunk_header_size));
        const long size = static_cast<long>(order.read(chunk, 4));
        const long padded = chunk_header_size + size + size % 2;
        if (at + chunk_header_size + size > end)
            throw edit_error("one of its chunks is cut off; let an audio editor save it anew");
        const std::string id = chunk.substr(0, 4);
        if (ascii_upper(id) == "ID3 ")
            return {at, std::min(padded, stream.length() - at), id,
                    read_bytes(stream, at + chunk_header_size, static_cast<std::uint64_t>(size))};
        at += padded;
    }
    return {end, 0, "ID3 ", ""};
}

}  // namespace

void edit_id3v2_chunk(file_stream& stream, const tag_changes& changes, bool big_endian_sizes) {
    const byte_order order{big_endian_sizes};
    const auto place = find_tag_chunk(stream, order);
    const bool is_tag = place.tag.starts_with("ID3") && place.tag.size() >= 10;
    const std::string edited = edit_id3v2(is_tag ? place.tag : "", changes, tag_role::primary);
    if (edited == place.tag) return;
    // A last chunk of odd size may lack its padding byte.
    const bool unpadded = place.at % 2 != 0;
    const std::string chunk = std::string(unpadded ? 1 : 0, '\0') + place.id + order.write(edited.size()) + edited +
                              std::string(edited.size() % 2, '\0');
    const std::string head = read_bytes(stream, 4, 4);
    const auto body = order.read(head, 0) + chunk.size() - static_cast<std::uint64_t>(place.size);
    if (body > largest_file) throw edit_error("it would grow beyond the 4 GB that its format allows");
    replace_bytes(stream, chunk, place.at, static_cast<std::uint64_t>(place.size));
    stream.seek(4, TagLib::IOStream::Beginning);
    stream.writeBlock(to_vector(order.write(body)));
}

}  // namespace ostrevan::tags
