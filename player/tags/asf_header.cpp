#include "player/tags/asf_header.h"

#include <tstring.h>

#include <algorithm>

#include "player/tags/asf_objects.h"
#include "player/tags/errors.h"
#include "player/tags/utf8.h"

namespace ostrevan::tags {
namespace {

constexpr std::size_t file_size_offset = 16;
constexpr std::size_t largest_count = 65535;

constexpr std::string_view description_names[] = {"Title", "Author", "Copyright", "Description", "Rating"};

/// Reads one field after another; a field beyond the end is damage.
class asf_bytes {
public:
    explicit asf_bytes(std::string_view bytes) : bytes_(bytes) {}
    std::string_view take(std::uint64_t size) {
        if (size > bytes_.size()) throw edit_error("its header is damaged");
        const auto part = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return part;
    }
    std::uint64_t number(std::size_t size) { return little_endian(take(size), 0, size); }
    [[nodiscard]] bool at_end() const { return bytes_.empty(); }

private:
    std::string_view bytes_;
};

std::vector<asf_object> objects_of(std::string_view bytes) {
    std::vector<asf_object> objects;
    for (asf_bytes source(bytes); !source.at_end();) {
        const auto id = source.take(16);
        const auto size = source.number(8);
        if (size < asf_object_header_size) throw edit_error("its header is damaged");
        objects.push_back({std::string(id), std::string(source.take(size - asf_object_header_size))});
    }
    return objects;
}

std::string bytes_of(const std::vector<asf_object>& objects) {
    std::string bytes;
    for (const auto& object : objects)
        bytes += object.id + as_little_endian(object.body.size() + asf_object_header_size, 8) + object.body;
    return bytes;
}

void read_description(std::string_view body, std::vector<asf_attribute>& found) {
    asf_bytes source(body);
    std::uint64_t sizes[std::size(description_names)];
    for (auto& size : sizes) size = source.number(2);
    for (std::size_t i = 0; i < std::size(description_names); ++i)
        if (const auto value = source.take(sizes[i]); !value.empty())
            found.push_back(
                {asf_place::description, std::string(description_names[i]), asf_type::text, std::string(value), {}, {}});
}

void read_extended(std::string_view body, std::vector<asf_attribute>& found) {
    asf_bytes source(body);
    for (auto count = source.number(2); count > 0; --count) {
        asf_attribute each;
        each.place = asf_place::extended;
        each.name_bytes = source.take(source.number(2));
        each.name = asf_text(each.name_bytes);
        each.type = static_cast<asf_type>(source.number(2));
        each.value = source.take(source.number(2));
        found.push_back(std::move(each));
    }
}

void read_metadata(std::string_view body, asf_place place, std::vector<asf_attribute>& found) {
    asf_bytes source(body);
    for (auto count = source.number(2); count > 0; --count) {
        asf_attribute each;
        each.place = place;
        each.scope = source.take(4);
        const auto name_size = source.number(2);
        each.type = static_cast<asf_type>(source.number(2));
        const auto value_size = source.number(4);
        each.name_bytes = source.take(name_size);
        each.name = asf_text(each.name_bytes);
        each.value = source.take(value_size);
        found.push_back(std::move(each));
    }
}

void read_attributes(const std::vector<asf_object>& objects, std::vector<asf_attribute>& found) {
    for (const auto& object : objects) {
        if (object.id == asf_id::description) read_description(object.body, found);
        if (object.id == asf_id::extended) read_extended(object.body, found);
        if (object.id == asf_id::metadata) read_metadata(object.body, asf_place::metadata, found);
        if (object.id == asf_id::library) read_metadata(object.body, asf_place::library, found);
        if (object.id == asf_id::extension && object.body.size() > asf_extension_prefix_size)
            read_attributes(objects_of(std::string_view(object.body).substr(asf_extension_prefix_size)), found);
    }
}

std::string description_body(const std::vector<asf_attribute>& attributes) {
    std::string sizes, values;
    for (const auto name : description_names) {
        const auto found = std::ranges::find_if(
            attributes, [&](const auto& each) { return each.place == asf_place::description && each.name == name; });
        const std::string value = found == attributes.end() ? "" : found->value;
        sizes += as_little_endian(value.size(), 2);
        values += value;
    }
    return sizes + values;
}

std::string list_body(const std::vector<asf_attribute>& attributes, asf_place place) {
    std::string body;
    std::size_t count = 0;
    for (const auto& each : attributes) {
        if (each.place != place) continue;
        ++count;
        const std::string& name = each.name_bytes;
        const auto type = as_little_endian(static_cast<unsigned>(each.type), 2);
        if (place == asf_place::extended)
            body += as_little_endian(name.size(), 2) + name + type + as_little_endian(each.value.size(), 2) + each.value;
        else
            body += each.scope + as_little_endian(name.size(), 2) + type + as_little_endian(each.value.size(), 4) + name +
                    each.value;
    }
    if (count > largest_count) throw edit_error("its header has more entries than its format can count");
    return as_little_endian(count, 2) + body;
}

bool holds_attributes(const asf_object& object) {
    return object.id == asf_id::description || object.id == asf_id::extended || object.id == asf_id::metadata ||
           object.id == asf_id::library;
}

bool has(const std::vector<asf_attribute>& attributes, asf_place place) {
    return std::ranges::find(attributes, place, &asf_attribute::place) != attributes.end();
}

/// Puts the body of an object in place of all of its kind; it is made when there is something to put there.
void set_body(std::vector<asf_object>& objects, std::string_view id, const std::string& body, bool needed) {
    const auto first = std::ranges::find(objects, id, &asf_object::id);
    if (first == objects.end()) {
        if (needed) objects.push_back({std::string(id), body});
        return;
    }
    first->body = body;
    objects.erase(std::remove_if(first + 1, objects.end(), [&](const asf_object& each) { return each.id == id; }),
                  objects.end());
}

/// The same inside the first extension of the header; later ones keep none.
void set_extensions(std::vector<asf_object>& objects, const std::vector<asf_attribute>& attributes) {
    bool first = true;
    for (auto& object : objects) {
        if (object.id != asf_id::extension || object.body.size() < asf_extension_prefix_size) continue;
        auto inner = objects_of(std::string_view(object.body).substr(asf_extension_prefix_size));
        if (first) {
            set_body(inner, asf_id::metadata, list_body(attributes, asf_place::metadata),
                     has(attributes, asf_place::metadata));
            set_body(inner, asf_id::library, list_body(attributes, asf_place::library), has(attributes, asf_place::library));
        } else {
            std::erase_if(inner, holds_attributes);
        }
        first = false;
        const std::string bytes = bytes_of(inner);
        object.body = object.body.substr(0, asf_extension_prefix_size - 4) + as_little_endian(bytes.size(), 4) + bytes;
    }
    if (first && has(attributes, asf_place::library))
        throw edit_error("its header has no place for several values of a field");
}

}  // namespace

bool is_description_name(std::string_view name) noexcept {
    return std::ranges::find(description_names, name) != std::end(description_names);
}

std::string asf_text(std::string_view bytes) {
    std::string text = utf8_of_utf16(bytes, std::endian::little);
    while (text.ends_with('\0')) text.pop_back();
    return text;
}

std::string asf_bytes_of(std::string_view text) {
    const auto bytes = TagLib::String(std::string(text), TagLib::String::UTF8).data(TagLib::String::UTF16LE);
    return std::string(bytes.data(), bytes.size()) + std::string(2, '\0');
}

asf_header read_asf_header(file_stream& stream) {
    const auto size = little_endian(read_bytes(stream, 16, 8), 0, 8);
    return take_apart_asf(read_bytes(stream, 0, size));
}

asf_header take_apart_asf(const std::string& bytes) {
    asf_header header;
    header.size = little_endian(bytes, 16, 8);
    if (bytes.size() < asf_header_size || header.size < asf_header_size || header.size > bytes.size())
        throw edit_error("its header is damaged");
    header.reserved = bytes.substr(28, 2);
    header.objects = objects_of(std::string_view(bytes).substr(asf_header_size, header.size - asf_header_size));
    read_attributes(header.objects, header.attributes);
    std::ranges::stable_sort(header.attributes, {}, &asf_attribute::place);
    return header;
}

std::string bytes_without_tags(const asf_header& header) {
    auto objects = header.objects;
    std::erase_if(objects, holds_attributes);
    for (auto& object : objects) {
        if (object.id == asf_id::file_properties) object.body.replace(std::min(object.body.size(), file_size_offset), 8, "");
        if (object.id != asf_id::extension || object.body.size() < asf_extension_prefix_size) continue;
        auto inner = objects_of(std::string_view(object.body).substr(asf_extension_prefix_size));
        std::erase_if(inner, holds_attributes);
        object.body = object.body.substr(0, asf_extension_prefix_size - 4) + bytes_of(inner);
    }
    return bytes_of(objects);
}

std::string put_together_asf(const asf_header& header, std::uint64_t file_size) {
    const auto& attributes = header.attributes;
    auto objects = header.objects;
    set_body(objects, asf_id::description, description_body(attributes), has(attributes, asf_place::description));
    set_body(objects, asf_id::extended, list_body(attributes, asf_place::extended), has(attributes, asf_place::extended));
    set_extensions(objects, attributes);
    const std::size_t new_size = asf_header_size + bytes_of(objects).size();
    if (const auto found = std::ranges::find(objects, asf_id::file_properties, &asf_object::id);
        found != objects.end() && found->body.size() >= file_size_offset + 8)
        found->body.replace(file_size_offset, 8, as_little_endian(file_size - header.size + new_size, 8));
    return std::string(asf_id::header) + as_little_endian(new_size, 8) + as_little_endian(objects.size(), 4) +
           header.reserved + bytes_of(objects);
}

}  // namespace ostrevan::tags
