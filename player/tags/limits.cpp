#include "player/tags/limits.h"

#include <algorithm>
#include <vector>

#include "player/tags/asf_objects.h"
#include "player/tags/errors.h"
#include "player/tags/limited_frames.h"
#include "player/tags/outer_tags.h"

namespace ostrevan::tags {
namespace {

void require_limits_of_ape(file_stream& stream) {
    constexpr long count_offset = 16;
    if (const auto tag = ape_tag_at_end(stream))
        require_entries(little_endian(read_bytes(stream, tag->end - ape_footer_size + count_offset, 4), 0, 4));
}

/// Atoms that the library looks into, and how many bytes of their bodies it passes over first.
struct mp4_container {
    std::string_view name;
    long prefix = 0;
};
constexpr mp4_container mp4_containers[] = {{"moov"}, {"udta"}, {"mdia"}, {"meta", 4}, {"ilst"},   {"stbl"},
                                            {"minf"}, {"moof"}, {"traf"}, {"trak"},    {"stsd", 8}};
/// Names after the header of a "meta" without a version, as QuickTime wrote it.
constexpr std::string_view first_in_plain_meta[] = {"hdlr", "ilst", "mhdr", "ctry", "lang"};

constexpr std::size_t deepest_atom = 16;
/// Real ones have more bytes for each; the library takes three hundred.
constexpr long bytes_an_atom = 64;
constexpr long most_small_atoms = 10000;

/// Follows the atoms as the library does, which lets one reach beyond the end of that around it.
void require_limits_of_mp4(file_stream& stream) {
    std::vector<long> ends;
    long atoms = 0;
    std::size_t entries = 0;
    long end_of_list = 0;
    for (long at = 0; at + 8 <= stream.length();) {
        while (!ends.empty() && ends.back() <= at) ends.pop_back();
        const std::string head = read_bytes(stream, at, 16);
        const std::string_view name = std::string_view(head).substr(4, 4);
        auto size = big_endian(head, 0, 4);
        const long header = size == 1 ? 16 : 8;
        if (size == 1) size = big_endian(head, 8, 8);
        const auto available = static_cast<std::uint64_t>(stream.length() - at);
        if (size == 0) size = available;
        if (size < 8 || size > available) return;
        if (++atoms > most_small_atoms + stream.length() / bytes_an_atom)
            throw edit_error("it has more atoms than sound of its size can need");
        if (at < end_of_list) require_entries(++entries);
        const long end = at + static_cast<long>(size);
        if (name == "ilst") end_of_list = end;
        const auto* inner = std::ranges::find(mp4_containers, name, &mp4_container::name);
        if (inner == std::end(mp4_containers)) {
            at = end;
            continue;
        }
        ends.push_back(end);
        if (ends.size() > deepest_atom) throw edit_error("its atoms are nested too deeply");
        at += header;
        const std::string next = name == "meta" ? read_bytes(stream, at + 4, 4) : "";
        if (std::ranges::find(first_in_plain_meta, next) == std::end(first_in_plain_meta)) at += inner->prefix;
    }
}

void require_limits_of_asf(file_stream& stream) {
    constexpr std::string_view lists[] = {asf_id::extended, asf_id::metadata, asf_id::library};
    const std::string header = asf_header_bytes(stream);
    std::size_t objects = 0;
    std::size_t entries = 0;
    const auto count = [&](std::string_view id, std::string_view body) {
        require_entries(++objects);
        if (std::ranges::find(lists, id) != std::end(lists)) require_entries(entries += little_endian(body, 0, 2));
    };
    for_each_asf_object(std::string_view(header).substr(std::min(header.size(), asf_header_size)), [&](auto id, auto body) {
        count(id, body);
        if (id != asf_id::extension || body.size() < asf_extension_prefix_size) return;
        for_each_asf_object(body.substr(asf_extension_prefix_size), [&](auto inner, auto inner_body) {
            if (inner == asf_id::extension) throw edit_error("its header is damaged: an extension inside an extension");
            count(inner, inner_body);
        });
    });
}

void require_limits_of_riff(file_stream& stream, bool big_endian_sizes) {
    constexpr std::uint64_t chunk_header = 8;
    constexpr std::size_t most_chunks = 10000;
    std::size_t chunks = 0;
    for (std::uint64_t at = 12; at + chunk_header <= static_cast<std::uint64_t>(stream.length());) {
        const std::string head = read_bytes(stream, static_cast<long>(at), chunk_header);
        const auto size = big_endian_sizes ? big_endian(head, 4, 4) : little_endian(head, 4, 4);
        if (++chunks > most_chunks) throw edit_error("it has more than 10,000 chunks; let an audio editor save it anew");
        at += chunk_header;
        if (head.starts_with("ID3 ") || head.starts_with("id3 ")) require_limited_frames(stream, static_cast<long>(at));
        at += size + size % 2;
    }
}

}  // namespace

void require_entries(std::size_t count) {
    if (count > most_entries) throw edit_error("its tag has more than 5,000 entries; let a tag editor write a smaller one");
}

void require_limits(container kind, file_stream& stream) {
    switch (kind) {
        case container::mpeg:
        case container::wavpack:
        case container::monkeys_audio:
        case container::true_audio:
            return require_limits_of_ape(stream);
        case container::mp4:
            return require_limits_of_mp4(stream);
        case container::asf:
            return require_limits_of_asf(stream);
        case container::wav:
        case container::aiff:
            return require_limits_of_riff(stream, kind == container::aiff);
        default:
            return;
    }
}

}  // namespace ostrevan::tags
