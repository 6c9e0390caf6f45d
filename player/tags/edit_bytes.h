#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "player/tags/changes.h"

namespace ostrevan::tags {

/// The tag's format cannot hold what is asked, or the tag is of a kind that cannot be edited without loss. The text says
/// which field or what about the tag; the file is named by the caller.
class edit_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using tag_changes = std::vector<tag_change>;

/// Of several tags in a file, fields are written to the primary one; the others only follow where they hold a field.
enum class tag_role { primary, other };

/// Whether an entry of that upper-case key belongs to the change.
bool concerns(const tag_change& change, const std::string& key);

/// What the field is called in a message.
[[noreturn]] void cannot_hold(const std::string& format, const std::string& field, const std::string& why);

/// Each takes the bytes of one tag and gives them back with the changes made and everything else as it was.
/// An empty text makes a new tag. @throws edit_error
std::string edit_id3v2(const std::string& tag, const tag_changes& changes, tag_role role);
std::string edit_ape(const std::string& tag, const tag_changes& changes, tag_role role);
std::string edit_xiph(const std::string& comment, const tag_changes& changes);

}  // namespace ostrevan::tags
