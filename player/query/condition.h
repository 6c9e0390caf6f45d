#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "player/query/local_time.h"
#include "player/query/query.h"

namespace ostrevan::query {

/// The track being tested.
struct examined {
    const titleformat::field_source& fields;
    /// The present moment, the same for all tracks of a search.
    std::chrono::sys_seconds now;
    /// Scratch space, so that a search does not allocate for each track. Valid until the next condition.
    std::string& text;
    std::string& folded;

    /// Runs the script into `text`; returns whether it was found.
    bool read(const titleformat::script& script) const {
        text.clear();
        return script.run(fields, text);
    }
};

/// A test of a track. Immutable.
class condition {
public:
    virtual ~condition() = default;
    [[nodiscard]] virtual bool matches(const examined& track) const = 0;

protected:
    condition() = default;
    condition(const condition&) = default;
    condition& operator=(const condition&) = default;
};
using condition_ptr = std::unique_ptr<const condition>;

enum class text_test { is, has };
enum class number_test { greater, less, equal };
enum class time_test { before, after, since, during };

[[nodiscard]] condition_ptr everything();
[[nodiscard]] condition_ptr negation(condition_ptr inner);
/// A single condition is returned unchanged.
[[nodiscard]] condition_ptr all_of(std::vector<condition_ptr> conditions);
[[nodiscard]] condition_ptr any_of(std::vector<condition_ptr> conditions);

/// From here on, a script that is not found does not match.
[[nodiscard]] condition_ptr present(titleformat::script left);
/// Ignores case and the encoding of accents.
[[nodiscard]] condition_ptr compare_text(titleformat::script left, text_test test, std::string_view right);
/// Whether a field that people search by contains the text: artists, album, title, composer, genre, date, file name.
[[nodiscard]] condition_ptr mentions(std::string_view text);
/// Text that does not start with a number does not match.
[[nodiscard]] condition_ptr compare_number(titleformat::script left, number_test test, std::int64_t right);
/// A text that is not a time does not match; one that names a period matches when the whole period does.
[[nodiscard]] condition_ptr compare_time(titleformat::script left, time_test test, period right);
/// From `count` units ago to now, both included.
[[nodiscard]] condition_ptr within_last(titleformat::script left, time_unit unit, std::int64_t count);

}  // namespace ostrevan::query
