#include <oggfile.h>

#include "player/tags/edit_tags.h"

namespace ostrevan::tags {
namespace {

using OggFile = TagLib::Ogg::File;

constexpr unsigned ogg_comment_packet = 1;
constexpr int flac_comment_type = 4;

std::string bytes_of(OggFile& file, unsigned packet) {
    const auto bytes = file.packet(packet);
    return {bytes.data(), bytes.size()};
}

/// In Ogg FLAC each metadata block is a packet; the comment is customarily the first behind the header, but need not be.
unsigned flac_comment_packet(OggFile& file) {
    for (unsigned packet = 1;; ++packet) {
        const std::string block = bytes_of(file, packet);
        if (block.empty()) break;
        if ((block[0] & 0x7F) == flac_comment_type) return packet;
        if ((block[0] & 0x80) != 0) break;
    }
    throw edit_error("it has no comment header; let its encoder or \"metaflac\" add one");
}

/// The bytes in front of the comment inside its packet.
std::size_t prefix_size(container kind) {
    switch (kind) {
        case container::vorbis:
            return 7;  // "\3vorbis"
        case container::opus:
            return 8;  // "OpusTags"
        case container::ogg_flac:
            return 4;
        default:
            return 0;
    }
}

}  // namespace

void edit_ogg_comment(TagLib::File& opened, container kind, const tag_changes& changes) {
    auto& file = dynamic_cast<OggFile&>(opened);
    const unsigned packet = kind == container::ogg_flac ? flac_comment_packet(file) : ogg_comment_packet;
    const std::string old = bytes_of(file, packet);
    const std::size_t prefix = prefix_size(kind);
    if (old.size() <= prefix) throw edit_error("its comment header is damaged");
    std::string edited = old.substr(0, prefix) + edit_xiph(old.substr(prefix), changes);
    if (kind == container::ogg_flac) edited.replace(1, 3, as_big_endian(edited.size() - prefix, 3));
    file.setPacket(packet, to_vector(edited));
    // The classes of the single formats would put their own rendering of the comment in place of this one.
    if (!file.OggFile::save()) throw edit_error("its pages could not be written");
}

}  // namespace ostrevan::tags
