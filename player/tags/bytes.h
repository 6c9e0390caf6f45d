#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "player/system/endian.h"
#include "player/tags/file_stream.h"

namespace ostrevan::tags {

using system::as_big_endian;
using system::as_little_endian;
using system::big_endian;
using system::little_endian;

inline TagLib::ByteVector to_vector(std::string_view bytes) {
    return {bytes.data(), static_cast<unsigned int>(bytes.size())};
}

inline std::string to_text(const TagLib::ByteVector& bytes) { return {bytes.data(), bytes.size()}; }

/// Up to `size` bytes of the stream.
inline std::string read_bytes(TagLib::IOStream& stream, long at, std::uint64_t size) {
    stream.seek(at, TagLib::IOStream::Beginning);
    return to_text(stream.readBlock(static_cast<unsigned long>(size)));
}

/// Replaces `old_size` bytes; the bytes after them move.
inline void replace_bytes(TagLib::IOStream& stream, std::string_view bytes, long at, std::uint64_t old_size) {
    stream.insert(to_vector(bytes), static_cast<unsigned long>(at), static_cast<unsigned long>(old_size));
}

}  // namespace ostrevan::tags
