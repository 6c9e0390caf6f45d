#pragma once

#include <string>
#include <vector>

namespace ostrevan::tags {

/// One frame of an ID3v2 tag, with its bytes as in the file.
struct id3_frame {
    std::string id;
    /// Two bytes; none in version 2.2.
    std::string flags;
    std::string body;
};

/// An ID3v2 tag taken apart without decoding its frames, so that those which are not edited go back byte for byte.
struct id3_frames {
    unsigned version = 4;
    /// Version 2.4 only: the frames are unsynchronised each on its own, and stay so.
    bool unsynchronised = false;
    std::vector<id3_frame> frames;
    /// Bytes after the last frame that are no padding.
    std::string rest;
};

/// Takes apart a complete tag, header included. @throws edit_error
id3_frames take_apart_id3(const std::string& tag);

/// The bytes of one frame with its header.
std::string frame_bytes(const id3_frame& frame, unsigned version);

/// The complete tag, padded up to `size` bytes if it is shorter; some room is added when it is longer.
std::string put_together_id3(const id3_frames& tag, std::size_t size);

}  // namespace ostrevan::tags
