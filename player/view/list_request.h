#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "player/library/media_library.h"
#include "player/query/query.h"
#include "player/titleformat/track_fields.h"
#include "player/view/columns.h"

namespace ostrevan::view {

/// What a list of the library is to show.
struct list_request {
    /// A query, or words to search for; all tracks when it is empty.
    std::string find{};
    /// Only these, in this order; the whole library when empty.
    std::optional<metadb_handle_list> among{};
    struct key {
        std::string column{};  ///< its identifier
        bool descending = false;

        bool operator==(const key&) const = default;
    };
    /// The most important one first. Without any, in the order of the query, else by location.
    std::vector<key> sort{};
};

/// Sorts by this column from now on, and among equals as before; by the one that was the first, the other way round.
void sort_by(list_request& request, const std::string& column);

/// Throws `query::query_error` for a mistake in the query. Keys without a column count for nothing. [any-thread]
metadb_handle_list make_list(const library::media_library& library, const titleformat::component_fields& fields,
                             const std::vector<column>& columns, const list_request& wanted);

/// Seconds. Stops early when `is_stale` becomes true. [any-thread]
double total_length(const metadb_handle_list& tracks, const std::atomic<bool>& is_stale);

}  // namespace ostrevan::view
