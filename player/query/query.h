#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/system/user_error.h"
#include "player/titleformat/script.h"

namespace ostrevan::query {

class condition;

struct sort_order {
    titleformat::script by;
    bool descending = false;
};

/// A field named in a query, and its place in bytes.
struct named_field {
    std::string name;
    std::size_t position = 0;
};

/// A parsed query: immutable, cheap to copy, and usable from any number of threads at once.
class query {
public:
    /// Throws what the source throws.
    [[nodiscard]] bool matches(const titleformat::field_source& fields, std::chrono::sys_seconds now) const;

    [[nodiscard]] const std::optional<sort_order>& sort() const noexcept { return sort_; }
    /// The number of tracks wanted, the first in sort order; all when empty.
    [[nodiscard]] const std::optional<std::size_t>& limit() const noexcept { return limit_; }
    /// The fields that are compared or sorted by, in lower case, except those inside scripts. A query with an unknown field
    /// makes no sense.
    [[nodiscard]] const std::vector<named_field>& fields() const noexcept { return fields_; }

private:
    friend query parse(std::string_view);
    query(std::shared_ptr<const condition> root, std::optional<sort_order> sort, std::optional<std::size_t> limit,
          std::vector<named_field> fields)
        : root_(std::move(root)), sort_(std::move(sort)), limit_(limit), fields_(std::move(fields)) {}

    std::shared_ptr<const condition> root_;
    std::optional<sort_order> sort_;
    std::optional<std::size_t> limit_;
    std::vector<named_field> fields_;
};

/// A mistake in a query. `what()` says what was expected and shows the place.
class query_error : public system::user_error {
public:
    query_error(const std::string& reason, std::string_view source, std::size_t position);

    /// Bytes from the start of the query.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }

private:
    std::size_t position_;
};

/// Throws `query_error`, or `titleformat::script_error` for a mistake in a script. An empty text matches every track.
[[nodiscard]] query parse(std::string_view source);

}  // namespace ostrevan::query
