#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ostrevan::remote {

/// What came over a connection is no frame, or no message of this version.
class malformed : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The largest content of a frame. The system's own bound for a command line is 6 MiB.
constexpr std::size_t largest_frame = std::size_t{8} << 20;

/// A frame: the length of its content in four bytes, the most significant one first, and the content, a value in CBOR.
std::string frame_of(std::string_view content);

/// Puts frames together again from bytes in pieces of any size.
class frame_reader {
public:
    void add(std::string_view bytes) { waiting_.append(bytes); }
    /// The content of the next frame; empty while it is incomplete. Throws `malformed` when it is too long.
    std::optional<std::string> next();

private:
    std::string waiting_;
};

/// Whether the bytes are one value in CBOR of the kind that messages consist of: lengths stand before what they measure, no
/// tags, and lists in a map at most. Others are not given to the library, which follows any depth by recursion.
bool is_plain_cbor(std::string_view bytes) noexcept;

}  // namespace ostrevan::remote
