#include "quorvel/xml/markup.h"

#include <array>

#include "quorvel/xml/bytes.h"

namespace Vek {
namespace {

struct skipped_markup {
    std::string_view begin;
    std::string_view end;
};

/// The first that fits counts.
constexpr std::array<skipped_markup, 3> skipped{{{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<!", ">"}}};

}  // namespace

std::size_t after_markup(std::string_view text, std::size_t at) {
    const std::string_view rest = text.substr(at);
    if (rest.size() < 2 || rest[1] != '!') return at;
    for (const auto& [begin, end] : skipped)
        if (rest.size() > begin.size() && rest.starts_with(begin))
            return at + required(rest.find(end, begin.size())) + end.size();
    return at;
}

std::size_t end_of_tag(std::string_view text, std::size_t from) {
    for (std::size_t at = from; at < text.size(); ++at) {
        if (text[at] == '>') return at;
        if (text[at] == '"') at = required(text.find('"', at + 1));
    }
    throw xmlParser::error();
}

}  // namespace Vek
