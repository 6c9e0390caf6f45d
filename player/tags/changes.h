#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ostrevan/file_info_builder.h"

namespace ostrevan::tags {

/// How a tag keeps "track 3 of 12": as "3/12" in one entry, or as two.
enum class number_style { joined, separate };

/// One field as a tag must hold it afterwards: every entry under one of `keys` goes, `writes` come in their place.
struct tag_change {
    std::string field;
    /// Upper-case names of entries.
    std::vector<std::string> keys;
    /// Upper-case name and values of each entry; none when the field is removed.
    std::vector<std::pair<std::string, std::vector<std::string>>> writes;
};
using tag_changes = std::vector<tag_change>;

/// Whether an entry of that upper-case key belongs to the change.
bool concerns(const tag_change& change, const std::string& key);

/// The fields under the names and in the form that reading gives: other spellings renamed, "3/12" split. Of an old
/// and a new spelling of one field, the one that reading does not give is the newer.
file_info_builder canonical(const file_info_builder& info);

/// Whether the same fields hold the same values, their order aside.
bool same_fields(const file_info_builder& a, const file_info_builder& b);

/// The fields that differ, both given in canonical form; a pair such as track number and total is one change.
tag_changes difference(const file_info_builder& before, const file_info_builder& after, number_style style);

/// Adds the values of a tag entry under the player's name and form; a field that is there already stays.
void add_entry(const std::string& key, std::vector<std::string> values, file_info_builder& info);

}  // namespace ostrevan::tags
