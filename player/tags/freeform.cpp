#include "player/tags/freeform.h"

#include <asftag.h>
#include <mp4tag.h>

#include <algorithm>

#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

/// Technical entries that are no fields, and identifiers that the library maps under its own names.
constexpr std::string_view hidden_mp4[] = {"MUSICBRAINZ ", "ITUN"};
/// Attributes that some encoders write beside the fields of the content description.
struct synonym {
    std::string_view attribute;
    std::string_view key;
};
constexpr synonym asf_synonyms[] = {{"AUTHOR", "ARTIST"}, {"DESCRIPTION", "COMMENT"}};

constexpr std::string_view hidden_asf[] = {"ISVBR", "WMFSDK", "DEVICECONFORMANCE", "MUSICBRAINZ/", "WM/"};

template <std::size_t N>
bool is_hidden(const std::string_view (&prefixes)[N], const std::string& upper_name) {
    return std::ranges::any_of(prefixes, [&](auto prefix) { return upper_name.starts_with(prefix); });
}

/// Some programs store numbers as such, or text without saying that it is text.
TagLib::StringList texts_of(const TagLib::MP4::Item& item) {
    TagLib::StringList texts = item.toStringList();
    if (!texts.isEmpty()) return texts;
    for (const auto& bytes : item.toByteVectorList()) {
        if (item.atomDataType() == TagLib::MP4::TypeInteger && !bytes.isEmpty() && bytes.size() <= 8) {
            unsigned long long number = 0;
            for (const char byte : bytes) number = number << 8 | static_cast<unsigned char>(byte);
            texts.append(std::to_string(number));
        } else if (item.atomDataType() == TagLib::MP4::TypeImplicit) {
            texts.append(TagLib::String(bytes, TagLib::String::UTF8));
        }
    }
    return texts;
}

TagLib::StringList texts_of(const TagLib::ASF::AttributeList& attributes) {
    TagLib::StringList texts;
    for (const auto& attribute : attributes) switch (attribute.type()) {
            case TagLib::ASF::Attribute::UnicodeType:
                texts.append(attribute.toString());
                break;
            case TagLib::ASF::Attribute::DWordType:
                texts.append(std::to_string(attribute.toUInt()));
                break;
            case TagLib::ASF::Attribute::QWordType:
                texts.append(std::to_string(attribute.toULongLong()));
                break;
            case TagLib::ASF::Attribute::WordType:
                texts.append(std::to_string(attribute.toUShort()));
                break;
            default:
                break;  // pictures, identifiers and other bytes
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

std::string asf_key(const TagLib::String& attribute) {
    const std::string name = ascii_upper(attribute.to8Bit(true));
    for (const auto& each : asf_synonyms)
        if (name == each.attribute) return std::string(each.key);
    return name;
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

keyed_values freeform_fields(const TagLib::ASF::Tag& tag) {
    keyed_values fields;
    for (const auto& [attribute, values] : tag.attributeListMap()) {
        const std::string name = asf_key(attribute);
        if (is_hidden(hidden_asf, name)) continue;
        if (auto texts = texts_of(values); !texts.isEmpty()) fields.emplace_back(name, texts);
    }
    return fields;
}

}  // namespace ostrevan::tags
