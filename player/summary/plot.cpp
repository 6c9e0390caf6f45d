#include "player/summary/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "player/titleformat/unicode.h"

namespace ostrevan::summary {
namespace {

struct entity {
    char character;
    std::string_view text;
};
constexpr entity entities[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

bool is_control(std::int32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

/// Two decimals, whatever the locale.
std::string decimal(double number) {
    const auto hundredths = std::llround(number * 100);
    std::array<char, 32> text{};
    return {text.data(), static_cast<std::size_t>(
                             std::snprintf(text.data(), text.size(), "%lld.%02lld", hundredths / 100, hundredths % 100))};
}

double share(std::size_t number, std::size_t largest) {
    return largest == 0 ? 0 : 100.0 * static_cast<double>(number) / static_cast<double>(largest);
}

std::string rectangle(std::string_view kind, double x, double y, double width, double height) {
    return "<rect class=\"" + std::string(kind) + "\" x=\"" + decimal(x) + "\" y=\"" + decimal(y) + "\" width=\"" +
           decimal(width) + "\" height=\"" + decimal(height) + "\"/>";
}

}  // namespace

std::string escaped(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const auto next = titleformat::first_character(text);
        const auto part = text.substr(0, next.length);
        text.remove_prefix(next.length);
        const auto* const found = std::ranges::find(entities, part.front(), &entity::character);
        if (found != std::end(entities)) out += found->text;
        else if (next.code == titleformat::character::malformed || is_control(next.code)) out += "\uFFFD";
        else out += part;
    }
    return out;
}

std::string grouped(std::size_t number) {
    auto text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3) text.insert(at - 3, "\u202F");
    return text;
}

std::string column_plot(std::string_view name, const std::vector<plotted>& columns, bool is_loose) {
    constexpr double gap = 0.14;
    std::size_t largest = 0;
    for (const auto& each : columns) largest = std::max(largest, each.number);
    auto out = "<svg class=\"columns\" role=\"img\" aria-label=\"" + escaped(name) + "\" viewBox=\"0 0 " +
               std::to_string(columns.size()) + " 100\" preserveAspectRatio=\"none\">";
    double x = 0;
    for (const auto& each : columns) {
        const auto height = share(each.number, largest);
        // The place above a low column belongs to it as well.
        out += "<g><title>" + escaped(each.title) + ": " + grouped(each.number) + "</title><rect fill=\"transparent\" x=\"" +
               decimal(x) + "\" y=\"0\" width=\"1\" height=\"100\"/>" +
               rectangle("full", x + gap / 2, 100 - height, 1 - gap, height) + "</g>";
        x += 1;
    }
    out += "</svg><div class=\"labels" + std::string(is_loose ? " loose" : "") +
           "\" aria-hidden=\"true\" style=\"grid-template-columns:repeat(" + std::to_string(columns.size()) +
           ",minmax(0,1fr))\">";
    for (const auto& each : columns) out += "<span>" + escaped(each.label) + "</span>";
    return out + "</div>";
}

std::string bar_plot(std::size_t full, std::size_t lighter, std::size_t largest) {
    const auto first = share(full, largest), second = share(lighter, largest);
    return "<svg class=\"bar\" aria-hidden=\"true\" viewBox=\"0 0 100 1\" preserveAspectRatio=\"none\">" +
           rectangle("track", 0, 0, 100, 1) + rectangle("full", 0, 0, first, 1) + rectangle("light", first, 0, second, 1) +
           "</svg>";
}

}  // namespace ostrevan::summary
