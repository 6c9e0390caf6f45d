#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "player/query/query.h"

namespace ostrevan::query {

/// A text whose byte order is the reader's order: without regard to case, runs of digits by value, so that "Track 9" comes
/// before "track 10".
[[nodiscard]] std::string natural_key(std::string_view text);

/// Compares the keys of two texts. For a few texts only; use `sort_naturally` for a long list.
[[nodiscard]] bool sort_key_less(std::string_view left, std::string_view right);

struct sort_entry {
    /// The track's place in the caller's list.
    std::size_t index = 0;
    std::string text;
    /// Nothing to sort by. Such entries come last in either direction.
    bool absent = false;
};

/// Makes each key once. Equal entries keep their order in either direction.
void sort_naturally(std::vector<sort_entry>& entries, bool descending);

/// The entry of one track. It is absent when the script finds none of its fields and has no number to sort by: a track
/// never played is absent by its time ("N/A"), and present with 0 by its number of plays.
[[nodiscard]] sort_entry entry_of(const sort_order& order, std::size_t index, const titleformat::field_source& fields);

}  // namespace ostrevan::query
