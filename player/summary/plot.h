#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::summary {

/// Text for the page: no character of it is markup, and none is obeyed. Malformed bytes and control characters become
/// U+FFFD.
std::string escaped(std::string_view text);
/// With a narrow space between thousands.
std::string grouped(std::size_t number);

struct plotted {
    std::string label{};  ///< under the column; may be empty
    std::string title{};  ///< shown where the reader points at it
    std::size_t number = 0;
};

/// Columns from left to right as an inline image that takes the width of the page, and the labels below it, whose size stays
/// readable. `name` is for readers who cannot see it. `is_loose`: labels may be wider than their columns.
std::string column_plot(std::string_view name, const std::vector<plotted>& columns, bool is_loose);

/// One bar of two parts, of which the second is drawn lighter; `largest` fills the width.
std::string bar_plot(std::size_t full, std::size_t lighter, std::size_t largest);

}  // namespace ostrevan::summary
