#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "player/query/query.h"

namespace ostrevan::query {

/// A text in a form whose byte order is the order a reader expects: letters without regard to case, runs of digits by their
/// value, so that "Track 9" comes before "track 10".
[[nodiscard]] std::string natural_key(std::string_view text);

/// The order of the two texts' keys. For a few texts; a long list is better sorted with `sort_naturally`.
[[nodiscard]] bool sort_key_less(std::string_view left, std::string_view right);

struct sort_entry {
    /// Of the track in the caller's list.
    std::size_t index = 0;
    std::string text;
    /// There is nothing to sort by. Such entries come last in either direction.
    bool absent = false;
};

/// Each key is made once. Entries that compare equal stay in the order they had, in either direction.
void sort_naturally(std::vector<sort_entry>& entries, bool descending);

/// The entry of one track. A track counts as absent when the script finds none of its fields and shows no number in their
/// place: one that was never played is absent by its time ("N/A"), and present with 0 by its number of plays.
[[nodiscard]] sort_entry entry_of(const sort_order& order, std::size_t index, const titleformat::field_source& fields);

}  // namespace ostrevan::query
