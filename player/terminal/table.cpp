#include "player/terminal/table.h"

#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>
#include <numeric>

#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* ellipsis = "…";
constexpr std::size_t gap = 2;
/// Minimum width of shortened text columns, before and after the table becomes compact.
constexpr std::size_t comfortable = 20;
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

/// A row is one line, whatever a tag contains.
std::string one_line(std::string cell) {
    std::ranges::replace_if(
        cell, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return shown_on_terminal(cell);
}

/// The text before the first blank; of a time that is the day.
std::string first_word(const std::string& cell) { return cell.substr(0, cell.find(' ')); }

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

std::size_t terminal_width(int descriptor) {
    winsize size{};
    if (::isatty(descriptor) == 0 || ::ioctl(descriptor, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

table::table(std::vector<column> columns) : columns_(std::move(columns)) {}

void table::add_row(std::vector<std::string> cells) {
    for (auto& cell : cells) cell = one_line(std::move(cell));
    rows_.push_back(std::move(cells));
}

void table::measure() {
    widths_.assign(columns_.size(), 0);
    const auto widen = [&](std::size_t i, const std::string& cell) {
        widths_[i] = std::max(widths_[i], display_width(cell));
    };
    for (std::size_t i = 0; i < columns_.size(); ++i)
        for (const auto& line : heading_of(i)) widen(i, line);
    for (const auto& row : rows_)
        for (std::size_t i = 0; i < columns_.size(); ++i) widen(i, cell_of(row, i));
}

std::array<std::string, 2> table::heading_of(std::size_t place) const {
    const auto& title = columns_[place].title;
    const auto blank = is_compact_ ? title.find(' ') : std::string::npos;
    if (blank == std::string::npos) return {"", title};
    return {title.substr(0, blank), title.substr(blank + 1)};
}

std::string table::cell_of(const std::vector<std::string>& row, std::size_t place) const {
    return is_compact_ && columns_[place].right ? first_word(row[place]) : row[place];
}

bool table::fit(std::size_t max_width, std::size_t narrowest) {
    const auto total = [&] { return std::accumulate(widths_.begin(), widths_.end(), gap * (widths_.size() - 1)); };
    while (total() > max_width) {
        std::size_t widest = columns_.size();
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!columns_[i].right && (widest == columns_.size() || widths_[i] > widths_[widest])) widest = i;
        if (widest == columns_.size() || widths_[widest] <= narrowest) return false;
        --widths_[widest];
    }
    return true;
}

std::string table::text(std::size_t max_width) {
    is_compact_ = false;
    measure();
    if (max_width != 0 && !fit(max_width, comfortable)) {
        is_compact_ = true;
        measure();
        fit(max_width, narrowest);
    }

    std::string out;
    const auto append_line = [&](const auto& text_of) {
        std::string line;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const auto cell = columns_[i].right ? text_of(i) : shortened(text_of(i), widths_[i]);
            const std::string padding(widths_[i] - std::min(widths_[i], display_width(cell)), ' ');
            if (i != 0) line.append(gap, ' ');
            line += columns_[i].right ? padding + cell : cell + padding;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + '\n';
    };
    if (is_compact_) append_line([&](std::size_t i) { return heading_of(i)[0]; });
    append_line([&](std::size_t i) { return heading_of(i)[1]; });
    append_line([&](std::size_t i) { return std::string(widths_[i], '-'); });
    for (const auto& row : rows_) append_line([&](std::size_t i) { return cell_of(row, i); });
    return out;
}

}  // namespace ostrevan::terminal
