#pragma once

#include <array>
#include <cstddef>
#include <string>
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
    void add_row(std::vector<std::string> cells);
    /// Shortens text columns with "…" until a line fits `max_width`. If too little of them would remain, the table becomes
    /// compact: headings break in two, and times show only the day. A `max_width` of 0 is unlimited.
    [[nodiscard]] std::string text(std::size_t max_width);

private:
    void measure();
    [[nodiscard]] std::array<std::string, 2> heading_of(std::size_t place) const;
    [[nodiscard]] std::string cell_of(const std::vector<std::string>& row, std::size_t place) const;
    /// Returns false when text columns would have to be narrower.
    bool fit(std::size_t max_width, std::size_t narrowest);

    std::vector<column> columns_;
    std::vector<std::vector<std::string>> rows_;
    bool is_compact_ = false;
    std::vector<std::size_t> widths_;
};

/// Terminal columns of a UTF-8 text.
std::size_t display_width(const std::string& text);

/// The text, cut to a width with "…" at the end.
std::string shortened(const std::string& text, std::size_t width);

/// Width of the terminal at a descriptor; 0 when there is none.
std::size_t terminal_width(int descriptor);

}  // namespace ostrevan::terminal
