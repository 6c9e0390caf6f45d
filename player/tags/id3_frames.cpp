#include "player/tags/id3_frames.h"

#include <id3v2synchdata.h>

#include <algorithm>

#include "player/tags/bytes.h"
#include "player/tags/errors.h"

namespace ostrevan::tags {
namespace {

namespace ID3v2 = TagLib::ID3v2;

constexpr std::size_t id3_header_size = 10;
constexpr std::size_t id3_room_to_grow = 1024;
constexpr std::size_t largest_tag = (1u << 28) - 1;

constexpr unsigned char unsynchronised_flag = 0x80;
constexpr unsigned char extended_flag = 0x40;

/// Four bytes of seven bits, which can never look like the start of an MPEG frame.
std::size_t synchsafe(std::string_view bytes, std::size_t at) {
    return ID3v2::SynchData::toUInt(to_vector(bytes.substr(std::min(at, bytes.size()), 4)));
}

std::string as_synchsafe(std::size_t number) { return to_text(ID3v2::SynchData::fromUInt(static_cast<unsigned>(number))); }

std::size_t id_size(unsigned version) { return version == 2 ? 3 : 4; }
std::size_t frame_header_size(unsigned version) { return version == 2 ? 6 : 10; }

bool is_frame_id(std::string_view id, unsigned version) {
    return id.size() == id_size(version) &&
           std::ranges::all_of(id, [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

bool ends_or_continues(const std::string& body, std::size_t at, unsigned version) {
    return at == body.size() ||
           (at < body.size() &&
            (body[at] == '\0' || is_frame_id(std::string_view(body).substr(at, id_size(version)), version)));
}

/// Version 2.4 has sizes of seven bits a byte. Some programs wrote eight: then only that size leads to another frame.
std::size_t frame_size(const std::string& body, std::size_t at, unsigned version) {
    if (version == 2) return big_endian(body, at + 3, 3);
    const std::size_t plain = big_endian(body, at + 4, 4);
    if (version == 3) return plain;
    const std::size_t safe = synchsafe(body, at + 4);
    const std::size_t next = at + id3_header_size;
    return !ends_or_continues(body, next + safe, version) && ends_or_continues(body, next + plain, version) ? plain : safe;
}

std::size_t extended_header_size(const std::string& body, unsigned version) {
    return version == 3 ? 4 + big_endian(body, 0, 4) : synchsafe(body, 0);
}

}  // namespace

id3_frames take_apart_id3(const std::string& tag) {
    id3_frames result;
    result.version = static_cast<unsigned char>(tag[3]);
    const auto flags = static_cast<unsigned char>(tag[5]);
    if (result.version < 2 || result.version > 4) throw edit_error("its ID3v2 tag is of an unknown version");
    if (result.version == 2 && (flags & extended_flag) != 0) throw edit_error("its ID3v2.2 tag is compressed");
    std::string body = tag.substr(id3_header_size, synchsafe(tag, 6));
    if (body.size() < synchsafe(tag, 6)) throw edit_error("its ID3v2 tag is cut off");
    if ((flags & unsynchronised_flag) != 0) {
        if (result.version == 4) result.unsynchronised = true;
        else body = to_text(ID3v2::SynchData::decode(to_vector(body)));
    }
    // The extended header describes the old tag (checksum, padding), and is not written again.
    std::size_t at = 0;
    if (result.version > 2 && (flags & extended_flag) != 0)
        at = std::min(extended_header_size(body, result.version), body.size());
    while (at + frame_header_size(result.version) <= body.size()) {
        const auto id = body.substr(at, id_size(result.version));
        if (!is_frame_id(id, result.version)) break;
        const std::size_t size = frame_size(body, at, result.version);
        const std::size_t begin = at + frame_header_size(result.version);
        if (size > body.size() - begin) break;
        result.frames.push_back({id, result.version == 2 ? "" : body.substr(at + 8, 2), body.substr(begin, size)});
        at = begin + size;
    }
    const auto last = body.find_last_not_of('\0');
    if (last != std::string::npos && last >= at) result.rest = body.substr(at, last + 1 - at);
    return result;
}

std::string frame_bytes(const id3_frame& frame, unsigned version) {
    switch (version) {
        case 2:
            return frame.id + as_big_endian(frame.body.size(), 3) + frame.body;
        case 3:
            return frame.id + as_big_endian(frame.body.size(), 4) + frame.flags + frame.body;
        default:
            return frame.id + as_synchsafe(frame.body.size()) + frame.flags + frame.body;
    }
}

std::string put_together_id3(const id3_frames& tag, std::size_t size) {
    std::string body;
    for (const auto& frame : tag.frames) body += frame_bytes(frame, tag.version);
    body += tag.rest;
    body.resize(id3_header_size + body.size() <= size ? size - id3_header_size : body.size() + id3_room_to_grow, '\0');
    if (body.size() > largest_tag) throw edit_error("its ID3v2 tag would grow beyond 256 MB");
    const char flags = tag.unsynchronised ? static_cast<char>(unsynchronised_flag) : '\0';
    return std::string("ID3") + static_cast<char>(tag.version) + '\0' + flags + as_synchsafe(body.size()) + body;
}

}  // namespace ostrevan::tags
