#include "quorvel/xml/start_tag.h"

#include "quorvel/xml/bytes.h"
#include "quorvel/xml/entities.h"
#include "quorvel/xml/markup.h"

namespace Vek {

std::size_t start_tag::read(std::string_view text, std::size_t at) {
    const std::size_t begin = at + 1;
    const std::size_t end = end_of_tag(text, begin);
    self_closing = text[end - 1] == '/';
    const std::string_view tag = text.substr(begin, end - begin - (self_closing ? 1 : 0));

    std::size_t length = 0;
    for (; length < tag.size() && !is_blank(tag[length]); ++length)
        if (tag[length] == '/' || tag[length] == '<') throw xmlParser::error();
    if (length == 0) throw xmlParser::error();
    const bool plain = is_plain(tag);
    name = tag.substr(0, length);
    if (!plain) name = decodeEntities(name.data(), name.size());
    read_attributes(tag.substr(length), plain);
    return end + 1;
}

void start_tag::read_attributes(std::string_view list, bool plain) {
    attributes.clear();
    while (!(list = without_leading_blanks(list)).empty()) {
        const bool as_expected = skip_expected_name(list);
        const std::string_view attribute = as_expected ? std::string_view() : take_name(list);
        if (list.empty() || list[0] != '"') throw xmlParser::error();
        const std::size_t close = required(list.find('"', 1));
        std::string_view value = list.substr(1, close - 1);
        if (!plain) value = decoded(value, decoded_value_);
        if (as_expected) attributes.add_expected(value);
        else add(attribute, value);
        list.remove_prefix(close + 1);
    }
}

bool start_tag::skip_expected_name(std::string_view& list) const {
    const std::string_view expected = attributes.expected();
    if (expected.empty() || !list.starts_with(expected) || !list.substr(expected.size()).starts_with("=\"")) return false;
    list.remove_prefix(expected.size() + 1);
    return true;
}

std::string_view start_tag::take_name(std::string_view& list) {
    const std::size_t equals = required(list.find('='));
    const std::string_view attribute = without_trailing_blanks(list.substr(0, equals));
    if (attribute.empty()) throw xmlParser::error();
    list = without_leading_blanks(list.substr(equals + 1));
    return attribute;
}

void start_tag::add(std::string_view written_name, std::string_view value) {
    const std::string_view attribute = decoded(written_name, decoded_name_);
    if (attribute.data() != written_name.data()) attributes.expect_none();
    if (!attributes.add(attribute, value)) throw xmlParser::error();
}

}  // namespace Vek
