#include "player/view/labels.h"

#include <algorithm>

#include "nuv/text.h"

namespace ostrevan::view {
namespace {

bool contains_nocase(std::string_view text, std::string_view part) {
    const auto same = [](char a, char b) { return nuv::ascii_lower(a) == nuv::ascii_lower(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

/// Whether the text contains every word of a name.
bool contains_words(std::string_view text, std::string_view name) {
    while (!name.empty()) {
        const auto word = name.substr(0, name.find(' '));
        if (!contains_nocase(text, word)) return false;
        name.remove_prefix(std::min(name.size(), word.size() + 1));
    }
    return true;
}

}  // namespace

label_match find_label(const std::vector<std::string_view>& labels, std::string_view name) {
    label_match match;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (nuv::equal_ascii_nocase(labels[i], name)) return {i, false};
        if (name.empty() || !contains_words(labels[i], name)) continue;
        match.is_ambiguous = match.index.has_value() || match.is_ambiguous;
        match.index = i;
    }
    if (match.is_ambiguous) match.index.reset();
    return match;
}

}  // namespace ostrevan::view
