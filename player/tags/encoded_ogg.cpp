#include <map>

#include "player/tags/bytes.h"
#include "player/tags/encoded_sound.h"
#include "player/tags/errors.h"
#include "player/tags/flac_blocks.h"
#include "player/tags/ogg_pages.h"
#include "player/tags/outer_tags.h"

namespace ostrevan::tags {
namespace {

/// The packets of one logical stream, as its pages come.
class packets {
public:
    /// `commented`: one packet of the stream is the comment; `kind` tells which.
    packets(container kind, bool commented) : kind_(kind), commented_(commented) {}

    void add(const ogg_page& page, std::string_view body) {
        const unsigned flags = page.flags();
        if ((flags & ogg_page::first) == 0 && page.number() != next_number_) to_.add("pages missing");
        next_number_ = page.number() + 1;
        if (((flags & ogg_page::continues) != 0) != open_) to_.add("packet torn");
        const auto segments = page.segments();
        const auto last_end = segments.find_last_not_of('\xFF');
        for (std::size_t i = 0; i < segments.size(); ++i) {
            const auto size = static_cast<unsigned char>(segments[i]);
            if (!open_) begin_packet(body);
            open_ = size == 255;
            if (!is_comment_) to_.add(body.substr(0, size));
            body.remove_prefix(size);
            if (open_) continue;
            // Header packets may get pages of their own; no sound ends at 0.
            to_.add_number(i == last_end && page.position() != -1 ? static_cast<std::uint64_t>(page.position()) : 0);
            ++index_;
        }
        if ((flags & ogg_page::last) != 0) to_.add("end");
    }

    [[nodiscard]] std::uint64_t value() const noexcept { return to_.value(); }

private:
    void begin_packet(std::string_view bytes) {
        is_comment_ = commented_ && index_ > 0 &&
                      (kind_ == container::ogg_flac ? big_endian(bytes, 0, 1) % 0x80 == flac_comment_block : index_ == 1);
        if (is_comment_) commented_ = false;
    }

    container kind_;
    bool commented_;
    digest to_;
    std::uint32_t next_number_ = 0;
    unsigned index_ = 0;
    bool open_ = false;
    bool is_comment_ = false;
};

}  // namespace

void add_ogg_sound(digest& to, container kind, file_stream& stream) {
    std::map<std::uint32_t, packets> streams;
    for (auto page = page_from(stream, start_after_id3v2(stream)); page; page = page_from(stream, page->end())) {
        const std::string body = read_bytes(stream, page->body(), static_cast<std::uint64_t>(page->body_size));
        if (!is_intact(*page, body)) continue;
        // The stream that comes first is the one with the comment.
        streams.try_emplace(page->serial(), kind, streams.empty()).first->second.add(*page, body);
    }
    if (streams.empty()) throw edit_error("none of its pages has the right checksum");
    for (const auto& [serial, each] : streams) to.add_number(each.value());
}

}  // namespace ostrevan::tags
