#include "quorvel/xml/markup.h"

#include <array>

#include "quorvel/xml/bytes.h"

namespace Vek {
namespace {

struct skipped_markup {
    std::string_view begin;
    std::string_view end;
};

/// The first match counts.
constexpr std::array<skipped_markup, 3> skipped{{{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<!", ">"}}};

}  // namespace

std::size_t after_declaration(std::string_view text, std::size_t at) {
    const std::string_view rest = text.substr(at);
    for (const auto& [begin, end] : skipped)
        if (rest.starts_with(begin)) return at + required(rest.find(end, begin.size())) + end.size();
    return at;
}

std::size_t end_of_tag(std::string_view text, std::size_t from) {
    // One search for the `>` and one loop that counts quotes each handle many bytes at a time. A single loop for both would
    // not.
    unsigned char quoted = 0;
    for (;;) {
        const std::size_t close = required(text.find('>', from));
        for (std::size_t at = from; at < close; ++at) quoted ^= static_cast<unsigned char>(text[at] == '"');
        if (quoted == 0) return close;
        from = close + 1;
    }
}

}  // namespace Vek
