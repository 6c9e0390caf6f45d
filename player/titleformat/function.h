#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "player/titleformat/script.h"

namespace ostrevan::titleformat {

struct node;

/// One call of a function while a script runs. Arguments are evaluated on demand, so a branch not taken costs nothing;
/// asking twice evaluates twice. An index out of range is a programming error.
class call {
public:
    call(const program& compiled, const node& self, const field_source& fields, std::string& target) noexcept
        : out(target), program_(compiled), self_(self), fields_(fields) {}

    [[nodiscard]] std::size_t size() const noexcept;

    /// Appends the text of an argument to `out`; returns whether a field in it was found.
    bool append(std::size_t index);
    /// As `append`, without the text.
    bool test(std::size_t index);
    [[nodiscard]] std::string text(std::size_t index);
    /// The integer at the start of an argument's text, 0 without one.
    [[nodiscard]] std::int64_t number(std::size_t index);
    /// A number of characters, at least 0 and at most the size limit of a result.
    [[nodiscard]] std::size_t length(std::size_t index);

    /// Whether some argument evaluated so far was found.
    [[nodiscard]] bool found() const noexcept { return found_; }

    std::string& out;

private:
    const program& program_;
    const node& self_;
    const field_source& fields_;
    bool found_ = false;
};

struct function {
    static constexpr std::size_t any_number = std::numeric_limits<std::size_t>::max();

    std::string_view name;
    std::size_t fewest = 0;
    std::size_t most = 0;
    /// Appends the result to `out` of the call; returns whether it counts as found.
    bool (*body)(call&) = nullptr;
};

[[nodiscard]] std::span<const function> logic_functions() noexcept;
[[nodiscard]] std::span<const function> number_functions() noexcept;
[[nodiscard]] std::span<const function> text_functions() noexcept;
[[nodiscard]] std::span<const function> part_functions() noexcept;

/// Ignores ASCII case; null when there is no such function.
[[nodiscard]] const function* find_function(std::string_view name) noexcept;

}  // namespace ostrevan::titleformat
