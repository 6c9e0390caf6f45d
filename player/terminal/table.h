#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace ostrevan::terminal {

/// A table in plain text: columns as wide as their widest cell, numbers at the right.
class table {
public:
    struct column {
        std::string title;
        bool right = false;
    };

    explicit table(std::vector<column> columns);
    /// One cell a column.
    void add_row(std::vector<std::string> cells);
    /// `max_width`: columns of text are shortened with "…" until a line fits. Where that would leave too little of them, the
    /// table becomes compact: headings break in two, and times show their day. 0: nothing is left out.
    [[nodiscard]] std::string text(std::size_t max_width);

private:
    void measure();
    [[nodiscard]] std::array<std::string, 2> heading_of(std::size_t place) const;
    [[nodiscard]] std::string cell_of(const std::vector<std::string>& row, std::size_t place) const;
    /// False when columns of text would have to be narrower.
    bool fit(std::size_t max_width, std::size_t narrowest);

    std::vector<column> columns_;
    std::vector<std::vector<std::string>> rows_;
    bool is_compact_ = false;
    std::vector<std::size_t> widths_;
};

/// Terminal columns that a UTF-8 text takes.
std::size_t display_width(const std::string& text);

/// As much of a text as fits a width, with "…" at its end when something is left out.
std::string shortened(const std::string& text, std::size_t width);

/// Width of the terminal at a descriptor; 0 when there is none.
std::size_t terminal_width(int descriptor);

}  // namespace ostrevan::terminal
