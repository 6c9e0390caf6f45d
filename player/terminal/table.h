#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ostrevan::terminal {

/// A plain-text table: columns as wide as their widest cell, numbers right-aligned.
class table {
public:
    struct column {
        std::string title;
        bool right = false;
    };

    explicit table(std::vector<column> columns);
    /// One cell per column.
    void add_row(std::span<const std::string> cells);
    /// Passes on the lines of the table, with their line feeds. Shortens text columns with "…" until a line fits
    /// `max_width`. If too little of them would remain, the table becomes compact: headings break in two, and times show
    /// only the day. A `max_width` of 0 is unlimited.
    void write(std::size_t max_width, const std::function<void(std::string_view line)>& out);

private:
    void measure();
    template <typename Visit>
    void for_each_row(Visit visit) const;
    [[nodiscard]] std::array<std::string_view, 2> heading_of(std::size_t place) const;
    [[nodiscard]] std::string_view shown_part(std::string_view cell, std::size_t place) const;
    /// Returns false when text columns would have to be narrower.
    bool fit(std::size_t max_width, std::size_t least);

    std::vector<column> columns_;
    // The cells of whole rows, each with a line feed, which no cell contains: a million rows need little more than their
    // text.
    std::vector<std::string> blocks_;
    bool is_compact_ = false;
    std::vector<std::size_t> widths_;
};

/// Terminal columns of a UTF-8 text.
std::size_t display_width(std::string_view text);

/// The text, cut to a width with "…" at the end.
std::string shortened(std::string_view text, std::size_t width);

/// Width of the terminal at a descriptor; 0 when there is none.
std::size_t terminal_width(int descriptor);

}  // namespace ostrevan::terminal
