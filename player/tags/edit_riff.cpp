// The library puts the chunk in its place. The tag in it is edited by edit_id3.cpp, which says why.
#include <rifffile.h>

#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

constexpr std::uint64_t largest_riff = 0xFFFFFFFF;

/// The chunks of a WAV or AIFF file, whatever is in them.
class chunked_file final : public TagLib::RIFF::File {
public:
    chunked_file(file_stream& stream, bool big_endian_sizes) : File(&stream, big_endian_sizes ? BigEndian : LittleEndian) {}
    [[nodiscard]] TagLib::Tag* tag() const override { return nullptr; }
    [[nodiscard]] TagLib::AudioProperties* audioProperties() const override { return nullptr; }
    bool save() override { return false; }

    void edit(const tag_changes& changes) {
        unsigned place = 0;
        while (place < chunkCount() && ascii_upper(to_text(chunkName(place))) != "ID3 ") ++place;
        const std::string old = place < chunkCount() ? to_text(chunkData(place)) : "";
        const bool is_tag = old.starts_with("ID3") && old.size() >= 10;
        const std::string edited = edit_id3v2(is_tag ? old : "", changes, tag_role::primary);
        if (edited == old) return;
        constexpr std::uint64_t header_and_padding = 9;
        if (riffSize() + edited.size() - old.size() + header_and_padding > largest_riff)
            throw edit_error("it would grow beyond the 4 GB that its format allows");
        if (place < chunkCount()) setChunkData(place, to_vector(edited));
        else setChunkData("ID3 ", to_vector(edited));
    }
};

}  // namespace

void edit_id3v2_chunk(file_stream& stream, const tag_changes& changes, container kind) {
    const bool is_aiff = kind == container::aiff;
    const std::string head = read_bytes(stream, 0, 8);
    if (!head.starts_with(is_aiff ? "FORM" : "RIFF"))
        throw edit_error("its chunks are of a kind that cannot be edited (RF64 or the like)");
    const auto stated = is_aiff ? big_endian(head, 4, 4) : little_endian(head, 4, 4);
    if (8 + static_cast<long>(stated) > stream.length() + 1)
        throw edit_error("its header announces more data than there is; let an audio editor save it anew");
    stream.seek(0, TagLib::IOStream::Beginning);
    chunked_file(stream, is_aiff).edit(changes);
}

}  // namespace ostrevan::tags
