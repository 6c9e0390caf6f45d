#include "player/library/name_filter.h"

#include <algorithm>

#include "nuv/text.h"
#include "player/tags/formats.h"

namespace ostrevan::library {
namespace {

/// The characters after the last dot in lower case, packed; 0 for none or more than eight.
std::uint64_t packed_extension(std::string_view name) noexcept {
    std::uint64_t packed = 0;
    for (std::size_t count = 0; count < 9 && count < name.size(); ++count) {
        const char each = name[name.size() - 1 - count];
        if (each == '.') return packed;
        packed = packed << 8 | static_cast<unsigned char>(nuv::ascii_lower(each));
    }
    return 0;
}

}  // namespace

name_filter::name_filter() {
    extensions_.push_back(packed_extension(".cue"));
    for (const auto& extension : tags::supported_extensions()) extensions_.push_back(packed_extension('.' + extension));
}

bool name_filter::is_wanted(std::string_view name) const noexcept {
    const auto extension = packed_extension(name);
    return extension != 0 && std::ranges::find(extensions_, extension) != extensions_.end();
}

}  // namespace ostrevan::library
