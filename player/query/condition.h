#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "player/query/query.h"

namespace ostrevan::query {

/// One track under examination.
struct examined {
    const titleformat::field_source& fields;
    const query_clock& clock;
    /// Working space, so that a search through a library does not allocate for each track. Its content lasts until the next
    /// condition.
    std::string& text;
    std::string& folded;

    /// Puts the script's text into `text`; true when it was found.
    bool read(const titleformat::script& script) const {
        text.clear();
        return script.run(fields, text);
    }
};

/// A test that a track passes or not. Immutable.
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
/// Of a single one: that one.
[[nodiscard]] condition_ptr all_of(std::vector<condition_ptr> conditions);
[[nodiscard]] condition_ptr any_of(std::vector<condition_ptr> conditions);

/// In all that follow, a script that is not found does not match.
[[nodiscard]] condition_ptr present(titleformat::script left);
/// Letters match without regard to case and to how accents are encoded.
[[nodiscard]] condition_ptr compare_text(titleformat::script left, text_test test, std::string_view right);
/// What people search by (artists, album, title, composer, genre, date, name of the file) contains this text.
[[nodiscard]] condition_ptr mentions(std::string_view text);
/// Text that does not start with a number does not match.
[[nodiscard]] condition_ptr compare_number(titleformat::script left, number_test test, std::int64_t right);
/// Text that is no time does not match; a text that is a longer period matches when all of that period does.
[[nodiscard]] condition_ptr compare_time(titleformat::script left, time_test test, period right);
/// From `count` units before the present moment up to that moment, both included.
[[nodiscard]] condition_ptr within_last(titleformat::script left, time_unit unit, std::int64_t count);

}  // namespace ostrevan::query
