#include "player/tags/edit_tags.h"

#include <apetag.h>
#include <id3v1tag.h>
#include <id3v2tag.h>
#include <infotag.h>

#include <algorithm>

#include "player/tags/field_names.h"
#include "player/tags/flac_blocks.h"
#include "player/tags/ogg_comment.h"
#include "player/tags/open_file.h"
#include "player/tags/tag_fields.h"
#include "player/tags/xiph_comment.h"

namespace ostrevan::tags {
namespace {

/// The tag that the fields were read from, or null when the file has none.
const TagLib::Tag* source_of_fields(const opened_file& opened) {
    for (const auto* tag : tags_by_precedence(opened)) {
        file_info_builder fields;
        add_tag_fields(*tag, fields);
        if (fields.meta_count() > 0) return tag;
    }
    return nullptr;
}

bool is_ape(const TagLib::Tag* tag) { return dynamic_cast<const TagLib::APE::Tag*>(tag) != nullptr; }

/// Vorbis comments keep the number and the total apart, all others write "3/12".
number_style style_of(container kind) {
    switch (kind) {
        case container::flac:
        case container::vorbis:
        case container::opus:
        case container::speex:
        case container::ogg_flac:
            return number_style::separate;
        default:
            return number_style::joined;
    }
}

void require_values(const file_info_builder& before, const file_info_builder& after) {
    for (std::size_t i = 0; i < after.meta_count(); ++i) {
        const auto& values = after.meta_values(i);
        const auto old = before.meta_find(after.meta_name(i));
        if (old != file_info_builder::npos && before.meta_values(old) == values) continue;
        if (after.meta_name(i).empty()) cannot_hold("files", "", "a field needs a name");
        const bool bad =
            std::ranges::any_of(values, [](const auto& value) { return value.empty() || value.find('\0') != value.npos; });
        if (bad) cannot_hold("files", after.meta_name(i), "a value must not be empty; remove the field instead");
    }
}

}  // namespace

void cannot_hold(const std::string& format, const std::string& field, const std::string& why) {
    throw edit_error(format + " cannot hold the field \"" + ascii_lower(field) + "\": " + why);
}

void edit_tags(opened_file& opened, const file_info_builder& before, const file_info_builder& after) {
    require_values(before, after);
    const auto* source = source_of_fields(opened);
    // A new tag would hide the limited one from readers, so it takes over all fields.
    const bool seeded =
        opened.kind != container::asf && !holds_fields(opened.xiph_comment) && (source == nullptr || is_limited(source));
    file_info_builder nothing;
    const auto changes = difference(seeded ? nothing : before, after, style_of(opened.kind));
    auto& stream = *opened.stream;
    const auto role_if = [](bool primary) { return primary ? tag_role::primary : tag_role::other; };
    switch (opened.kind) {
        case container::mpeg:
        case container::true_audio:
            edit_ape_at_end(stream, changes, role_if(is_ape(source)));
            edit_id3v2_in_front(stream, changes, role_if(!is_ape(source)));
            break;
        case container::wavpack:
        case container::monkeys_audio:
            edit_ape_at_end(stream, changes, tag_role::primary);
            break;
        case container::flac:
            edit_flac_comment(stream, changes);
            edit_id3v2_in_front(stream, changes, tag_role::other);
            break;
        case container::vorbis:
        case container::opus:
        case container::speex:
        case container::ogg_flac:
            edit_ogg_comment(stream, opened.kind, changes);
            break;
        case container::wav:
        case container::aiff:
            edit_id3v2_chunk(stream, changes, opened.kind);
            break;
        case container::mp4:
            edit_mp4(stream, changes);
            break;
        case container::asf:
            edit_asf(stream, changes);
            break;
    }
}

}  // namespace ostrevan::tags
