#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TagLib {
class Tag;
}

namespace ostrevan::tags {

/// The entries of one tag in its own order: upper-case keys as in TagLib's property maps, and UTF-8 values. Entries of one
/// key are together.
using tag_entries = std::vector<std::pair<std::string, std::vector<std::string>>>;
tag_entries entries_of(const TagLib::Tag& tag);

/// The values of a key, which is added at the end when it is new.
std::vector<std::string>& values_for(tag_entries& entries, std::string_view key);

}  // namespace ostrevan::tags
