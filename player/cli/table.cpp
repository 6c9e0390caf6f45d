#include "player/cli/table.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>

namespace ostrevan::cli {
namespace {

constexpr const char* ellipsis = "…";
constexpr std::size_t gap = 2;
constexpr std::size_t narrowest = 8;

struct glyph {
    std::size_t bytes;
    std::size_t width;
};

glyph glyph_at(const std::string& text, std::size_t position) {
    if (const char plain = text[position]; plain >= ' ' && plain <= '~') return {1, 1};
    utf8proc_int32_t code = 0;
    const auto* const start = reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + position;
    const auto bytes = utf8proc_iterate(start, static_cast<utf8proc_ssize_t>(text.size() - position), &code);
    if (bytes <= 0) return {1, 1};
    return {static_cast<std::size_t>(bytes), static_cast<std::size_t>(std::max(0, utf8proc_charwidth(code)))};
}

std::string shortened(const std::string& text, std::size_t width) {
    if (display_width(text) <= width) return text;
    std::size_t used = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const auto next = glyph_at(text, position);
        if (used + next.width + 1 > width) break;
        used += next.width;
        position += next.bytes;
    }
    return text.substr(0, position) + ellipsis;
}

/// A line feed or another control character in a tag would break the table.
std::string one_line(std::string cell) {
    std::ranges::replace_if(
        cell, [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return cell;
}

}  // namespace

std::size_t display_width(const std::string& text) {
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();) {
        const auto next = glyph_at(text, position);
        width += next.width;
        position += next.bytes;
    }
    return width;
}

std::size_t terminal_width() {
    winsize size{};
    if (::isatty(STDOUT_FILENO) == 0 || ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

table::table(std::vector<column> columns) : columns_(std::move(columns)) {
    for (const auto& each : columns_) widths_.push_back(display_width(each.title));
}

void table::add_row(std::vector<std::string> cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        cells[i] = one_line(std::move(cells[i]));
        widths_[i] = std::max(widths_[i], display_width(cells[i]));
    }
    rows_.push_back(std::move(cells));
}

std::string table::text(std::size_t max_width) const {
    auto widths = widths_;
    const auto total = [&] {
        std::size_t sum = gap * (widths.size() - 1);
        for (const auto width : widths) sum += width;
        return sum;
    };
    while (max_width != 0 && total() > max_width) {
        std::size_t widest = columns_.size();
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!columns_[i].right && (widest == columns_.size() || widths[i] > widths[widest])) widest = i;
        if (widest == columns_.size() || widths[widest] <= narrowest) break;
        --widths[widest];
    }

    std::string out;
    const auto append_line = [&](const auto& cell_of) {
        std::string line;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const auto cell = columns_[i].right ? cell_of(i) : shortened(cell_of(i), widths[i]);
            const std::string padding(widths[i] - std::min(widths[i], display_width(cell)), ' ');
            if (i != 0) line.append(gap, ' ');
            line += columns_[i].right ? padding + cell : cell + padding;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + '\n';
    };
    append_line([&](std::size_t i) { return columns_[i].title; });
    append_line([&](std::size_t i) { return std::string(widths[i], '-'); });
    for (const auto& row : rows_) append_line([&](std::size_t i) { return row[i]; });
    return out;
}

}  // namespace ostrevan::cli
