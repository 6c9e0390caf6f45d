#include "player/library/cue_text.h"

#include "player/tags/utf8.h"

namespace ostrevan::library {

using namespace std::string_view_literals;

std::string cue_text(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE"sv)) return tags::utf8_of_utf16(bytes.substr(2), std::endian::little);
    if (bytes.starts_with("\xFE\xFF"sv)) return tags::utf8_of_utf16(bytes.substr(2), std::endian::big);
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) bytes.remove_prefix(3);
    return tags::utf8_or_latin1(bytes);
}

}  // namespace ostrevan::library
