#include "player/terminal/bar_chart.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "player/terminal/table.h"
#include "player/terminal/terminal_text.h"

namespace ostrevan::terminal {
namespace {

constexpr std::size_t chart_indent = 2;
constexpr std::size_t chart_gap = 2;
constexpr std::size_t narrowest_bar = 4;

struct drawing {
    std::string_view full, lighter;
};
constexpr drawing blocks{"█", "░"};
constexpr drawing ascii{"#", ":"};

std::string repeated(std::string_view text, std::size_t times) {
    std::string out;
    for (; times > 0; --times) out += text;
    return out;
}

}  // namespace

void bar_chart::add(const std::string& name, std::size_t number, std::size_t lighter) {
    rows_.push_back({shown_in_one_line(name), number, lighter});
}

void bar_chart::write(std::ostream& out, std::size_t width, bool with_blocks) const {
    if (rows_.empty()) return;
    std::size_t names = 0, digits = 0, largest = 1;
    for (const auto& each : rows_) {
        names = std::max(names, display_width(each.name));
        largest = std::max(largest, each.number + each.lighter);
    }
    digits = std::to_string(largest).size();
    const auto taken = chart_indent + chart_gap + chart_gap + digits;
    const auto room = std::max(width, taken + 2 * narrowest_bar) - taken;
    names = std::min(names, std::max(room / 2, narrowest_bar));
    const auto longest = room - names;
    const auto& [full, lighter] = with_blocks ? blocks : ascii;

    out << title_ << '\n';
    for (const auto& each : rows_) {
        const auto name = shortened(each.name, names);
        const auto number = std::to_string(each.number + each.lighter);
        // A number above 0 always has a visible bar.
        const auto length_of = [&](std::size_t count) {
            return count == 0 ? 0 : std::max<std::size_t>(1, (count * longest + largest / 2) / largest);
        };
        const auto whole = length_of(each.number + each.lighter);
        const auto solid = std::min(whole, length_of(each.number));
        out << repeated(" ", chart_indent) << name << repeated(" ", names - std::min(names, display_width(name)) + chart_gap)
            << repeated(" ", digits - number.size()) << number;
        if (whole != 0) out << repeated(" ", chart_gap) << repeated(full, solid) << repeated(lighter, whole - solid);
        out << '\n';
    }
}

}  // namespace ostrevan::terminal
