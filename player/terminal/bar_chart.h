#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace ostrevan::terminal {

/// Names with numbers, each beside a bar. The longest bar takes the width that the names leave.
class bar_chart {
public:
    explicit bar_chart(std::string title) : title_(std::move(title)) {}

    /// The bar has two parts, of which the second is drawn lighter.
    void add(const std::string& name, std::size_t number, std::size_t lighter = 0);
    [[nodiscard]] bool empty() const noexcept { return rows_.empty(); }
    /// With blocks for a terminal, else in ASCII. Nothing without rows.
    void write(std::ostream& out, std::size_t width, bool with_blocks) const;

private:
    struct row {
        std::string name;
        std::size_t number;
        std::size_t lighter;
    };
    std::string title_;
    std::vector<row> rows_;
};

}  // namespace ostrevan::terminal
