#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "player/query/clock.h"
#include "player/titleformat/script.h"

namespace ostrevan::query {

class condition;

struct sort_order {
    titleformat::script by;
    bool descending = false;
};

/// A parsed query: immutable, cheap to copy, and usable from any number of threads at once.
class query {
public:
    /// Passes on what the source throws.
    [[nodiscard]] bool matches(const titleformat::field_source& fields, const query_clock& clock) const;

    [[nodiscard]] const std::optional<sort_order>& sort() const noexcept { return sort_; }

private:
    friend query parse(std::string_view);
    query(std::shared_ptr<const condition> root, std::optional<sort_order> sort)
        : root_(std::move(root)), sort_(std::move(sort)) {}

    std::shared_ptr<const condition> root_;
    std::optional<sort_order> sort_;
};

/// A mistake in a query. `what()` names what was expected and shows the place.
class query_error : public std::runtime_error {
public:
    query_error(const std::string& reason, std::string_view source, std::size_t position);

    /// Bytes from the start of the query.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }

private:
    std::size_t position_;
};

/// Throws `query_error`, and `titleformat::script_error` for a mistake in a script that is part of it. An empty text matches
/// every track.
[[nodiscard]] query parse(std::string_view source);

}  // namespace ostrevan::query
