#pragma once

#include <string>
#include <vector>

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

}  // namespace ostrevan::tags
