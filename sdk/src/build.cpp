#include "ostrevan/build.h"

#include <algorithm>

namespace ostrevan {
namespace {

/// The text up to its zero; all of it if foreign data has none.
template <std::size_t Size>
std::string_view text_of(const char (&characters)[Size]) noexcept {
    return {characters, std::ranges::find(characters, '\0')};
}

}  // namespace

std::optional<build_difference> difference_of(const build_fingerprint& first, const build_fingerprint& second) noexcept {
    for (const auto& ours : first.properties) {
        const auto name = text_of(ours.name);
        const auto* const theirs =
            std::ranges::find(second.properties, name, [](const build_property& other) { return text_of(other.name); });
        if (name.empty() || theirs == std::end(second.properties)) continue;
        const build_difference values{text_of(ours.value), text_of(theirs->value)};
        if (values.first != values.second) return values;
    }
    return std::nullopt;
}

}  // namespace ostrevan
