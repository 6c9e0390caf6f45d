#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ostrevan::cli {

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
    /// `max_width`: cells of left columns are shortened with "…" until a line fits; 0 leaves them whole.
    [[nodiscard]] std::string text(std::size_t max_width) const;

private:
    std::vector<column> columns_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::size_t> widths_;
};

/// Terminal columns that a UTF-8 text takes.
std::size_t display_width(const std::string& text);

/// Width of the terminal at standard output; 0 when there is none.
std::size_t terminal_width();

}  // namespace ostrevan::cli
