#include <mp4file.h>
#include <mp4tag.h>
#include <tpropertymap.h>

#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"
#include "player/tags/freeform.h"

namespace ostrevan::tags {
namespace {

namespace MP4 = TagLib::MP4;

constexpr const char* freeform_prefix = "----:com.apple.iTunes:";

/// The atoms that hold an entry; the library knows those with a name of their own, others are freeform atoms.
MP4::ItemMap items_of(const std::string& key, const TagLib::StringList& values) {
    MP4::Tag translator;
    TagLib::PropertyMap map;
    map.insert(TagLib::String(key, TagLib::String::UTF8), values);
    if (translator.setProperties(map).isEmpty()) return translator.itemMap();
    MP4::ItemMap items;
    items.insert(TagLib::String(freeform_prefix + key, TagLib::String::UTF8), MP4::Item(values));
    return items;
}

}  // namespace

void edit_mp4(TagLib::File& file, const tag_changes& changes) {
    auto& tag = dynamic_cast<MP4::Tag&>(*file.tag());
    for (const auto& change : changes) {
        const MP4::ItemMap present = tag.itemMap();
        TagLib::String freeform_spelling;
        for (const auto& [atom, item] : present)
            if (concerns(change, ascii_upper(freeform_name(atom)))) {
                if (freeform_spelling.isEmpty()) freeform_spelling = atom;
                tag.removeItem(atom);
            }
        for (const auto& key : change.keys)
            for (const auto& [atom, item] : items_of(key, TagLib::StringList("1"))) tag.removeItem(atom);
        for (const auto& [key, values] : change.writes) {
            TagLib::StringList list;
            for (const auto& value : values) list.append(TagLib::String(value, TagLib::String::UTF8));
            for (const auto& [atom, item] : items_of(key, list)) {
                const bool freeform = !freeform_name(atom).empty();
                tag.setItem(freeform && !freeform_spelling.isEmpty() ? freeform_spelling : atom, item);
            }
        }
    }
    if (!file.save()) throw edit_error("its atoms could not be written");
}

}  // namespace ostrevan::tags
