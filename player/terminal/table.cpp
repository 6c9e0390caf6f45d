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

bool is_plain(char c) noexcept { return c >= ' ' && c <= '~'; }

glyph glyph_at(std::string_view text, std::size_t position) {
    if (is_plain(text[position])) return {1, 1};
    utf8proc_int32_t code = 0;
    const auto* const start = reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + position;
    const auto bytes = utf8proc_iterate(start, static_cast<utf8proc_ssize_t>(text.size() - position), &code);
    if (bytes <= 0) return {1, 1};
    return {static_cast<std::size_t>(bytes), static_cast<std::size_t>(std::max(0, utf8proc_charwidth(code)))};
}

/// A row is one line, whatever a tag contains.
void append_one_line(std::string& out, std::string_view cell) {
    if (std::ranges::all_of(cell, is_plain)) out += cell;
    else out += shown_in_one_line(cell);
}

}  // namespace

std::size_t display_width(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t position = 0; position < text.size();) {
        const auto next = glyph_at(text, position);
        width += next.width;
        position += next.bytes;
    }
    return width;
}

std::string shortened(std::string_view text, std::size_t width) {
    if (display_width(text) <= width) return std::string(text);
    std::size_t used = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const auto next = glyph_at(text, position);
        if (used + next.width + 1 > width) break;
        used += next.width;
        position += next.bytes;
    }
    return std::string(text.substr(0, position)) + ellipsis;
}

std::size_t terminal_width(int descriptor) {
    winsize size{};
    if (::isatty(descriptor) == 0 || ::ioctl(descriptor, TIOCGWINSZ, &size) != 0) return 0;
    return size.ws_col;
}

table::table(std::vector<column> columns) : columns_(std::move(columns)) {}

void table::add_row(std::span<const std::string> cells) {
    constexpr std::size_t block_size = 256 * 1024;
    if (blocks_.empty() || blocks_.back().size() >= block_size) blocks_.emplace_back();
    auto& block = blocks_.back();
    for (const auto& cell : cells) {
        append_one_line(block, cell);
        block += '\n';
    }
}

/// Calls `visit(place, cell)` for every cell of every row.
template <typename Visit>
void table::for_each_row(Visit visit) const {
    std::size_t place = 0;
    for (const std::string_view block : blocks_) {
        for (std::size_t begin = 0; begin < block.size(); place = (place + 1) % columns_.size()) {
            const auto end = block.find('\n', begin);
            visit(place, shown_part(block.substr(begin, end - begin), place));
            begin = end + 1;
        }
    }
}

void table::measure() {
    widths_.assign(columns_.size(), 0);
    const auto widen = [&](std::size_t i, std::string_view cell) { widths_[i] = std::max(widths_[i], display_width(cell)); };
    for (std::size_t i = 0; i < columns_.size(); ++i)
        for (const auto line : heading_of(i)) widen(i, line);
    for_each_row(widen);
}

std::array<std::string_view, 2> table::heading_of(std::size_t place) const {
    const std::string_view title = columns_[place].title;
    const auto blank = is_compact_ ? title.find(' ') : std::string_view::npos;
    if (blank == std::string_view::npos) return {"", title};
    return {title.substr(0, blank), title.substr(blank + 1)};
}

/// Of a time in a compact table, the text before the first blank: the day.
std::string_view table::shown_part(std::string_view cell, std::size_t place) const {
    return is_compact_ && columns_[place].right ? cell.substr(0, cell.find(' ')) : cell;
}

bool table::fit(std::size_t max_width, std::size_t least) {
    const auto total = [&] { return std::accumulate(widths_.begin(), widths_.end(), gap * (widths_.size() - 1)); };
    while (total() > max_width) {
        std::size_t widest = columns_.size();
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!columns_[i].right && (widest == columns_.size() || widths_[i] > widths_[widest])) widest = i;
        if (widest == columns_.size() || widths_[widest] <= least) return false;
        --widths_[widest];
    }
    return true;
}

void table::write(std::size_t max_width, const std::function<void(std::string_view line)>& out) {
    is_compact_ = false;
    measure();
    if (max_width != 0 && !fit(max_width, comfortable)) {
        is_compact_ = true;
        measure();
        fit(max_width, narrowest);
    }

    std::string line;
    const auto add_cell = [&](std::size_t place, std::string_view text) {
        const auto& [title, right] = columns_[place];
        if (place != 0) line.append(gap, ' ');
        const std::size_t width = display_width(text);
        const std::size_t padding = widths_[place] - std::min(widths_[place], width);
        if (right) line.append(padding, ' ') += text;
        else if (width <= widths_[place]) (line += text).append(padding, ' ');
        else line += shortened(text, widths_[place]);
        if (place + 1 < columns_.size()) return;
        line.erase(line.find_last_not_of(' ') + 1);
        line += '\n';
        out(line);
        line.clear();
    };
    for (std::size_t i = 0; is_compact_ && i < columns_.size(); ++i) add_cell(i, heading_of(i)[0]);
    for (std::size_t i = 0; i < columns_.size(); ++i) add_cell(i, heading_of(i)[1]);
    for (std::size_t i = 0; i < columns_.size(); ++i) add_cell(i, std::string(widths_[i], '-'));
    for_each_row(add_cell);
}

}  // namespace ostrevan::terminal
