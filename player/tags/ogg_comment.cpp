// The library drops the pages of other streams that lie among those of the comment, and numbers the pages of other streams
// after it anew; a decoder then misses sound.
#include "player/tags/ogg_comment.h"

#include "player/tags/bytes.h"
#include "player/tags/errors.h"
#include "player/tags/flac_blocks.h"
#include "player/tags/ogg_pages.h"
#include "player/tags/outer_tags.h"
#include "player/tags/xiph_comment.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t segment_size = 255;
constexpr std::size_t segments_a_page = 255;

/// Segments that follow one another, and their bytes.
struct segment_run {
    std::string sizes;
    std::string bytes;

    void add_packet(std::string_view packet) {
        sizes.append(packet.size() / segment_size, static_cast<char>(segment_size));
        sizes += static_cast<char>(packet.size() % segment_size);
        bytes += packet;
    }
};

/// The comment's packet and its pages.
struct comment_place {
    std::string packet;
    /// From the page on which it begins to that on which it ends.
    std::vector<ogg_page> pages;
    /// The other packets on the first and the last of them.
    segment_run before, after;
};

/// In Ogg FLAC each metadata block is a packet; the comment is customarily the first after the header, but need not be.
bool is_comment(container kind, std::size_t index, const std::string& packet) {
    if (kind != container::ogg_flac) return index == 1;
    return index > 0 && big_endian(packet, 0, 1) % 0x80 == flac_comment_block;
}

bool is_last_header(container kind, std::size_t index, const std::string& packet) {
    return kind == container::ogg_flac && index > 0 && big_endian(packet, 0, 1) >= 0x80;
}

comment_place find_comment(file_stream& stream, container kind) {
    comment_place place;
    std::optional<std::uint32_t> serial;
    bool open = false;
    std::size_t index = 0;
    for (auto page = page_from(stream, start_after_id3v2(stream)); page; page = page_from(stream, page->end())) {
        if (!serial) serial = page->serial();
        if (page->serial() != *serial) continue;
        const std::string body = read_bytes(stream, page->body(), static_cast<std::uint64_t>(page->body_size));
        const auto segments = page->segments();
        if (!open) place.pages.clear();
        place.pages.push_back(*page);
        for (std::size_t i = 0, at = 0; i < segments.size(); ++i) {
            if (!open) {
                if (place.pages.size() > 1) place.pages = {*page};
                place.packet.clear();
                place.before = {std::string(segments.substr(0, i)), body.substr(0, at)};
            }
            const std::size_t size = static_cast<unsigned char>(segments[i]);
            place.packet.append(body, at, size);
            at += size;
            open = size == segment_size;
            if (open) continue;
            if (is_comment(kind, index, place.packet)) {
                place.after = {std::string(segments.substr(i + 1)), body.substr(at)};
                return place;
            }
            if (is_last_header(kind, index, place.packet))
                throw edit_error("it has no comment header; let its encoder or \"metaflac\" add one");
            ++index;
        }
    }
    throw edit_error("its comment header is damaged");
}

/// The mark in front of the comment inside its packet.
std::string start_of_comment(container kind, const std::string& packet) {
    std::string start = kind == container::vorbis     ? "\3vorbis"
                        : kind == container::opus     ? "OpusTags"
                        : kind == container::ogg_flac ? packet.substr(0, flac_block_header_size)
                                                      : "";
    if (packet.size() <= start.size() || !packet.starts_with(start)) throw edit_error("its comment header is damaged");
    return start;
}

std::string edited_packet(container kind, const std::string& packet, const tag_changes& changes) {
    std::string start = start_of_comment(kind, packet);
    const std::string comment = edit_xiph(packet.substr(start.size()), changes);
    if (kind == container::ogg_flac) {
        if (comment.size() > largest_flac_block) throw edit_error("its tags would grow beyond the 16 MB that FLAC allows");
        start.replace(1, 3, as_big_endian(comment.size(), 3));
    }
    return start + comment;
}

/// The pages for a run that takes the place of `old` ones.
std::vector<std::string> pages_of(const segment_run& run, const std::vector<ogg_page>& old) {
    const auto last_end = run.sizes.find_last_not_of(static_cast<char>(segment_size));
    const std::int64_t position = old.back().position();
    std::vector<std::string> pages;
    for (std::size_t from = 0, at = 0; from < run.sizes.size(); from += segments_a_page) {
        const auto sizes = std::string_view(run.sizes).substr(from, segments_a_page);
        std::size_t size = 0;
        for (const char each : sizes) size += static_cast<unsigned char>(each);
        const auto body = std::string_view(run.bytes).substr(at, size);
        at += size;
        ogg_page_fields fields{.flags = 0,
                               .position = -1,
                               .serial = old.front().serial(),
                               .number = old.front().number() + static_cast<std::uint32_t>(pages.size())};
        const unsigned begin_flags = ogg_page::continues | ogg_page::first;
        if (from == 0) fields.flags = old.front().flags() & begin_flags;
        else if (static_cast<unsigned char>(run.sizes[from - 1]) == segment_size) fields.flags = ogg_page::continues;
        if (from + sizes.size() == run.sizes.size()) fields.flags |= old.back().flags() & ogg_page::last;
        // A page states where its last packet ends: header packets at 0. Of sound, only the last packet is known.
        const bool has_last_end = from <= last_end && last_end < from + sizes.size();
        const bool has_end = sizes.find_first_not_of(static_cast<char>(segment_size)) != sizes.npos;
        if (has_last_end) fields.position = position;
        else if (has_end && position == 0) fields.position = 0;
        pages.push_back(page_header(fields, sizes, body) + std::string(body));
    }
    return pages;
}

/// The pages of other streams among those of the comment.
std::string bytes_between(file_stream& stream, const std::vector<ogg_page>& pages) {
    std::string bytes;
    for (std::size_t i = 1; i < pages.size(); ++i)
        bytes += read_bytes(stream, pages[i - 1].end(), static_cast<std::uint64_t>(pages[i].at - pages[i - 1].end()));
    return bytes;
}

/// Renumbers the pages of a stream from a place to the start of the next stream. A page with a wrong checksum keeps it, so
/// that decoders go on dropping it.
void renumber(file_stream& stream, long from, std::uint32_t serial, std::uint32_t by) {
    for (auto page = page_from(stream, from); page; page = page_from(stream, page->end())) {
        if (page->serial() != serial) continue;
        if ((page->flags() & ogg_page::first) != 0) return;
        const std::string body = read_bytes(stream, page->body(), static_cast<std::uint64_t>(page->body_size));
        if (!is_intact(*page, body)) continue;
        stream.seek(page->at, TagLib::IOStream::Beginning);
        stream.writeBlock(to_vector(page_header(
            {.flags = page->flags(), .position = page->position(), .serial = serial, .number = page->number() + by},
            page->segments(), body)));
        if (stream.error() != 0) return;
    }
}

}  // namespace

std::string read_ogg_comment(container kind, file_stream& stream) {
    const std::string packet = find_comment(stream, kind).packet;
    return packet.substr(start_of_comment(kind, packet).size());
}

void edit_ogg_comment(file_stream& stream, container kind, const tag_changes& changes) {
    const auto place = find_comment(stream, kind);
    segment_run run = place.before;
    run.add_packet(edited_packet(kind, place.packet, changes));
    run.sizes += place.after.sizes;
    run.bytes += place.after.bytes;
    const auto pages = pages_of(run, place.pages);
    std::string bytes;
    for (const auto& page : pages) bytes += page;
    bytes += bytes_between(stream, place.pages);
    const long begin = place.pages.front().at;
    replace_bytes(stream, bytes, begin, static_cast<std::uint64_t>(place.pages.back().end() - begin));
    const auto more = static_cast<std::uint32_t>(pages.size() - place.pages.size());
    if (more != 0) renumber(stream, begin + static_cast<long>(bytes.size()), place.pages.front().serial(), more);
}

}  // namespace ostrevan::tags
