#pragma once

#include <optional>
#include <string>
#include <vector>

#include "player/tags/changes.h"
#include "player/tags/tag_entries.h"

namespace ostrevan::tags {

/// A Vorbis comment taken apart: entries are "NAME=value", those without a "=" kept as they are.
struct xiph_comment {
    std::string vendor = "ostrevan";
    std::vector<std::string> entries;
    /// What follows the entries: a framing bit, or bytes that Opus keeps there.
    std::string rest;
};

/// An empty text gives an empty comment. @throws edit_error when it is damaged.
xiph_comment take_apart_xiph(const std::string& comment);

/// The number of entries that a comment states, whether they are there or not.
std::uint64_t entries_stated_by(const std::string& comment);

/// The fields in a comment; pictures are no fields. @throws edit_error when it is damaged.
tag_entries entries_of_comment(const std::string& comment);

/// Whether a comment is there, in order, and has any field.
bool holds_fields(const std::optional<std::string>& comment) noexcept;

/// The comment's bytes with the changes made; the other entries keep theirs, and their order. @throws edit_error
std::string edit_xiph(const std::string& comment, const tag_changes& changes);

}  // namespace ostrevan::tags
