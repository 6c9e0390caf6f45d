#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "quorvel/platform/zone_rule_posix.h"

namespace quorvel {

/// When a zone's offset from UTC changed and will change. Moments are seconds since 1970 UTC, offsets seconds east of
/// Greenwich.
class zone_changes {
public:
    /// From the bytes of a file of the zone database (version 2 or later); empty when they are not of that form.
    static std::optional<zone_changes> from_file(std::string_view bytes);
    /// From a rule alone.
    explicit zone_changes(const zone_rule& rule);

    /// The offset in force at a moment.
    [[nodiscard]] std::int32_t offset_at(std::int64_t moment) const noexcept {
        return offsets_[index_of(moment - periods_beyond(moment))];
    }
    /// A wall-clock time that was skipped has the offset after the change; one that occurs twice is the first.
    [[nodiscard]] std::int64_t utc_of(std::int64_t wall_clock) const noexcept;

private:
    explicit zone_changes(std::int32_t first_offset) : moments_{beginning}, offsets_{first_offset} {}
    void add(std::int64_t moment, std::int32_t offset);
    /// Adds a calendar period of the rule's changes after `known_until`.
    void add_years(const zone_rule& rule, std::int64_t known_until);
    void make_hints();

    /// Index of the span that a moment before `horizon_` lies in.
    [[nodiscard]] std::size_t index_of(std::int64_t moment) const noexcept;
    /// Where that span ends.
    [[nodiscard]] std::int64_t end_of(std::size_t index) const noexcept;
    /// How far a moment at or beyond `horizon_` has to be moved back.
    [[nodiscard]] std::int64_t periods_beyond(std::int64_t moment) const noexcept;

    static constexpr std::int64_t beginning = std::numeric_limits<std::int64_t>::min();
    static constexpr std::int64_t end = std::numeric_limits<std::int64_t>::max();

    /// The offset at an index holds from the moment at that index to the next one.
    std::vector<std::int64_t> moments_;
    std::vector<std::int32_t> offsets_;
    /// For each span of 2^22 seconds (about 48 days) since 1970 the index in force at its beginning. The search starts there
    /// and hardly ever takes more than one step.
    std::vector<std::uint32_t> hints_;
    static constexpr int hint_bits = 22;
    /// From here on everything repeats the 400 years before.
    std::int64_t horizon_ = end;
};

}  // namespace quorvel
