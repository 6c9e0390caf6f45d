#include <asffile.h>
#include <asftag.h>
#include <tpropertymap.h>

#include "player/tags/edit_tags.h"
#include "player/tags/freeform.h"

namespace ostrevan::tags {
namespace {

namespace ASF = TagLib::ASF;

TagLib::PropertyMap one_entry(const std::string& key, const TagLib::StringList& values) {
    TagLib::PropertyMap map;
    map.insert(TagLib::String(key, TagLib::String::UTF8), values);
    return map;
}

/// Fields of the content description, which are no attributes and hold one text each.
struct description_field {
    std::string_view key;
    void (ASF::Tag::*set)(const TagLib::String&);
};
constexpr description_field description_fields[] = {{"TITLE", &ASF::Tag::setTitle},
                                                    {"ARTIST", &ASF::Tag::setArtist},
                                                    {"COMMENT", &ASF::Tag::setComment},
                                                    {"COPYRIGHT", &ASF::Tag::setCopyright}};

const description_field* description_of(const std::string& key) {
    for (const auto& each : description_fields)
        if (each.key == key) return &each;
    return nullptr;
}

/// The attribute that holds an entry: the library knows the customary names.
TagLib::String attribute_of(const std::string& key) {
    ASF::Tag translator;
    if (translator.setProperties(one_entry(key, TagLib::StringList("1"))).isEmpty())
        for (const auto& [name, values] : translator.attributeListMap()) return name;
    return {key, TagLib::String::UTF8};
}

void remove(ASF::Tag& tag, const tag_change& change) {
    for (const auto& key : change.keys) {
        if (const auto* field = description_of(key)) (tag.*field->set)(TagLib::String());
        tag.removeItem(attribute_of(key));
    }
    const ASF::AttributeListMap present = tag.attributeListMap();
    for (const auto& [name, values] : present)
        if (concerns(change, asf_key(name))) tag.removeItem(name);
}

void write(ASF::Tag& tag, const std::string& key, const std::vector<std::string>& values) {
    if (const auto* field = description_of(key); field != nullptr && values.size() == 1) {
        (tag.*field->set)(TagLib::String(values.front(), TagLib::String::UTF8));
        return;
    }
    ASF::AttributeList attributes;
    for (const auto& value : values) attributes.append(ASF::Attribute(TagLib::String(value, TagLib::String::UTF8)));
    tag.setAttribute(attribute_of(key), attributes);
}

}  // namespace

void edit_asf(TagLib::File& file, const tag_changes& changes) {
    auto& tag = dynamic_cast<ASF::Tag&>(*file.tag());
    for (const auto& change : changes) {
        remove(tag, change);
        for (const auto& [key, values] : change.writes) write(tag, key, values);
    }
    if (!file.save()) throw edit_error("its header could not be written");
}

}  // namespace ostrevan::tags
