#include "player/tags/freeform.h"

#include <mp4tag.h>

#include <algorithm>

#include "player/tags/bytes.h"
#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

/// Technical entries that are no fields, and identifiers that the library maps under its own names.
constexpr std::string_view hidden_mp4[] = {"MUSICBRAINZ ", "ITUN"};
template <std::size_t N>
bool is_hidden(const std::string_view (&prefixes)[N], const std::string& upper_name) {
    return std::ranges::any_of(prefixes, [&](auto prefix) { return upper_name.starts_with(prefix); });
}

/// Some programs store binary numbers, or text that is not marked as text.
TagLib::StringList texts_of(const TagLib::MP4::Item& item) {
    TagLib::StringList texts = item.toStringList();
    if (!texts.isEmpty()) return texts;
    for (const auto& bytes : item.toByteVectorList()) {
        if (item.atomDataType() == TagLib::MP4::TypeInteger && !bytes.isEmpty() && bytes.size() <= 8) {
            texts.append(std::to_string(big_endian(to_text(bytes), 0, bytes.size())));
        } else if (item.atomDataType() == TagLib::MP4::TypeImplicit) {
            // Bytes that are no text come out empty.
            if (const TagLib::String text(bytes, TagLib::String::UTF8); !text.isEmpty() && text[0] >= ' ')
                texts.append(text);
        }
    }
    return texts;
}

}  // namespace

std::string freeform_name(const TagLib::String& atom) {
    const std::string text = atom.to8Bit(true);
    if (!text.starts_with("----:")) return {};
    const auto colon = text.find(':', 5);
    return colon == std::string::npos ? std::string() : text.substr(colon + 1);
}

keyed_values freeform_fields(const TagLib::MP4::Tag& tag) {
    keyed_values fields;
    for (const auto& [atom, item] : tag.itemMap()) {
        const std::string name = ascii_upper(freeform_name(atom));
        if (name.empty() || is_hidden(hidden_mp4, name)) continue;
        if (auto texts = texts_of(item); !texts.isEmpty()) fields.emplace_back(name, texts);
    }
    return fields;
}

}  // namespace ostrevan::tags
