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
    name = decoded(tag.substr(0, length), decoded_name_);
    read_attributes(tag.substr(length), is_plain(tag));
    return end + 1;
}

void start_tag::read_attributes(std::string_view list, bool plain) {
    attributes.clear();
    while (!(list = without_leading_blanks(list)).empty()) {
        const std::size_t equals = required(list.find('='));
        const std::string_view attribute = without_trailing_blanks(list.substr(0, equals));
        list = without_leading_blanks(list.substr(equals + 1));
        if (attribute.empty() || list.empty() || list[0] != '"') throw xmlParser::error();
        const std::size_t close = required(list.find('"', 1));
        const std::string_view value = list.substr(1, close - 1);
        const bool added = plain ? attributes.add(attribute, value)
                                 : attributes.add(decoded(attribute, decoded_name_), decoded(value, decoded_value_));
        if (!added) throw xmlParser::error();
        list.remove_prefix(close + 1);
    }
}

}  // namespace Vek
