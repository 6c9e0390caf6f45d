// The library's own saving changes the order of several values of a name, and moves them between the objects of the header.
#include <algorithm>

#include "player/tags/asf_fields.h"
#include "player/tags/asf_header.h"
#include "player/tags/bytes.h"
#include "player/tags/edit_tags.h"
#include "player/tags/field_names.h"

namespace ostrevan::tags {
namespace {

/// The largest value that the older objects hold.
constexpr std::size_t largest_short_value = 65535;
constexpr std::size_t scope_size = 4;

/// The first value goes where every program looks; of several, only the library object may repeat a name.
asf_place place_for(const asf_header& header, const asf_attribute& attribute) {
    const auto is_taken = [&](asf_place place) {
        return std::ranges::any_of(header.attributes,
                                   [&](const auto& each) { return each.place == place && each.name == attribute.name; });
    };
    if (attribute.value.size() > largest_short_value) return asf_place::library;
    if (is_description_name(attribute.name) && !is_taken(asf_place::description)) return asf_place::description;
    return is_taken(asf_place::extended) ? asf_place::library : asf_place::extended;
}

}  // namespace

void edit_asf(file_stream& stream, const tag_changes& changes) {
    auto header = read_asf_header(stream);
    for (const auto& change : changes) {
        std::string old_name;
        std::erase_if(header.attributes, [&](const asf_attribute& each) {
            const bool age_rating = each.place == asf_place::description && each.name == "Rating";
            if (age_rating || !concerns(change, key_of_asf_name(each.name))) return false;
            if (old_name.empty()) old_name = each.name;
            return true;
        });
        for (const auto& [key, values] : change.writes) {
            const std::string customary = asf_name_of_key(key);
            const bool keeps_name = customary == key && field_of_key(ascii_upper(old_name)) == field_of_key(key);
            for (const auto& value : values) {
                asf_attribute attribute;
                attribute.name = keeps_name ? old_name : customary;
                attribute.value = asf_bytes_of(value);
                attribute.name_bytes = asf_bytes_of(attribute.name);
                if (attribute.name_bytes.size() > largest_short_value)
                    cannot_hold("Windows Media", change.field.substr(0, 20) + "...", "the name is too long");
                attribute.place = place_for(header, attribute);
                attribute.scope.assign(scope_size, '\0');
                header.attributes.push_back(std::move(attribute));
            }
        }
    }
    const auto file_size = static_cast<std::uint64_t>(stream.length());
    replace_bytes(stream, put_together_asf(header, file_size), 0, header.size);
}

}  // namespace ostrevan::tags
