#include "player/tags/limited_frames.h"

#include <id3v2tag.h>
#include <tfile.h>
#include <unknownframe.h>

#include "player/tags/errors.h"
#include "player/tags/limits.h"

namespace ostrevan::tags {
namespace {

namespace ID3v2 = TagLib::ID3v2;

/// Of all compressed frames together. They unpack to a thousand times as much at most.
constexpr std::size_t most_compressed = 32768;

bool is_chapter(const TagLib::ByteVector& id) { return id == "CHAP" || id == "CTOC"; }

/// Where the frames inside a chapter or a table of contents begin.
unsigned begin_of_embedded(const TagLib::ByteVector& id, const TagLib::ByteVector& body) {
    auto at = static_cast<unsigned>(body.find('\0') + 1);
    if (id == "CHAP") return at + 16;  // times and offsets
    unsigned children = at + 1 < body.size() ? static_cast<unsigned char>(body[static_cast<int>(at) + 1]) : 0;
    for (at += 2; children > 0 && at < body.size(); --children) {
        const int end = body.find('\0', at);
        if (end < 0) break;
        at = static_cast<unsigned>(end) + 1;
    }
    return at;
}

/// A file for the library's tag to read from.
class tag_source final : public TagLib::File {
public:
    explicit tag_source(TagLib::IOStream& stream) : File(&stream) {}
    [[nodiscard]] TagLib::Tag* tag() const override { return nullptr; }
    [[nodiscard]] TagLib::AudioProperties* audioProperties() const override { return nullptr; }
    bool save() override { return false; }
};

}  // namespace

void limited_frames::refuse_what_is_too_much(const frame_names::header& header) const {
    if (++frames_ > most_entries) refusal_ = "its tag has more than 5,000 entries; let a tag editor write a smaller one";
    if (is_inside_ && is_chapter(header.frameID())) refusal_ = "its ID3v2 tag is damaged: a chapter inside a chapter";
    if (header.compression()) compressed_ += header.frameSize();
    if (compressed_ > most_compressed)
        refusal_ = "its tag has more than 32 KB of compressed frames; let a tag editor unpack them";
}

bool limited_frames::updateFrame(frame_names::header* header) const {
    refuse_what_is_too_much(*header);
    const bool chapter = is_chapter(header->frameID());
    if (refusal_ != nullptr || (chapter && header->compression())) {
        // A header without flags, for the library would unpack an unknown frame, too.
        auto plain = header->frameID() + TagLib::ByteVector::fromUInt(header->frameSize()) + TagLib::ByteVector(2, '\0');
        header->setData(plain, 3u);
        return false;
    }
    return !chapter && FrameFactory::updateFrame(header);
}

void limited_frames::require_none_refused() const {
    if (refusal_ != nullptr) throw edit_error(refusal_);
}

void limited_frames::look_into(const ID3v2::Frame& chapter, const ID3v2::Header& tag) {
    const auto* unknown = dynamic_cast<const ID3v2::UnknownFrame*>(&chapter);
    if (unknown == nullptr) return;
    is_inside_ = true;
    const auto body = unknown->data();
    for (unsigned at = begin_of_embedded(chapter.frameID(), body); at < body.size() && refusal_ == nullptr;) {
        const std::unique_ptr<ID3v2::Frame> frame(createFrame(body.mid(at), &tag));
        if (!frame || frame->size() == 0) break;
        at += frame->size() + ID3v2::Frame::headerSize(tag.majorVersion());
    }
    is_inside_ = false;
}

void require_limited_frames(file_stream& stream, long at) {
    tag_source source(stream);
    limited_frames frames;
    const ID3v2::Tag tag(&source, at, &frames);
    frames.require_none_refused();
    for (const auto* frame : tag.frameList())
        if (is_chapter(frame->frameID())) frames.look_into(*frame, *tag.header());
    frames.require_none_refused();
}

}  // namespace ostrevan::tags
