#pragma once

#include <id3v2frame.h>
#include <id3v2framefactory.h>
#include <id3v2header.h>

#include <cstddef>
#include <memory>

#include "player/tags/file_stream.h"

namespace ostrevan::tags {

/// Lets the library make the frames of one ID3v2 tag, with limits: by itself it follows chapters inside chapters to any
/// depth, and unpacks compressed frames to any size. Chapters become unknown frames; they hold no fields. Outlives the tag.
class limited_frames final : public TagLib::ID3v2::FrameFactory {
public:
    limited_frames() = default;
    ~limited_frames() override = default;

    /// @throws edit_error when the tag went beyond a limit.
    void require_none_refused() const;
    /// Looks at the frames inside a chapter or a table of contents.
    void look_into(const TagLib::ID3v2::Frame& chapter, const TagLib::ID3v2::Header& tag);

protected:
    struct frame_names : TagLib::ID3v2::Frame {
        using header = Header;
    };
    bool updateFrame(frame_names::header* header) const override;

private:
    void refuse_what_is_too_much(const frame_names::header& header) const;

    mutable const char* refusal_ = nullptr;
    mutable std::size_t frames_ = 0;
    mutable std::size_t compressed_ = 0;
    bool is_inside_ = false;
};

/// For a tag that the library reads with frames of its own, at a place in the file. @throws edit_error
void require_limited_frames(file_stream& stream, long at);

}  // namespace ostrevan::tags
