#include "quorvel/xml/content_end.h"

#include <algorithm>

#include "quorvel/xml/bytes.h"
#include "quorvel/xml/entities.h"
#include "quorvel/xml/markup.h"

namespace Vek {

std::size_t content_end::find(std::string_view name, std::size_t from) {
    asked_ = name;
    if (parser_.isRawContent(asked_.c_str(), text_.size(), from)) return find_raw(name, from);

    open_.assign(1, name);
    for (std::size_t at = from;;) {
        at = required(text_.find('<', at));
        if (const std::size_t after = after_markup(text_, at); after != at) {
            at = after;
            continue;
        }
        const std::size_t close = end_of_tag(text_, at + 1);
        if (text_[at + 1] != '/') {
            at = enter(at, close);
            continue;
        }
        leave(text_.substr(at + 2, close - at - 2));
        if (open_.empty()) return at;
        at = close + 1;
    }
}

std::size_t content_end::find_raw(std::string_view name, std::size_t from) {
    return required(text_.find("</" + std::string(name) + ">", from));
}

std::size_t content_end::enter(std::size_t at, std::size_t close) {
    const std::size_t from = close + 1;
    if (text_[close - 1] == '/') return from;
    // The name ends at a space and at no other blank, and is not decoded: only the end of these elements matters.
    std::string_view name = text_.substr(at + 1, close - at - 1);
    name = name.substr(0, std::min(name.find(' '), name.size()));
    name = without_leading_blanks(without_trailing_blanks(name));
    asked_ = name;
    if (parser_.isEmptyElement(asked_.c_str())) return from;
    if (parser_.isRawContent(asked_.c_str(), text_.size(), from)) return end_of_tag(text_, find_raw(name, from)) + 1;
    open_.push_back(name);
    return from;
}

void content_end::leave(std::string_view raw_name) {
    raw_name = without_trailing_blanks(raw_name);
    // Nearly always they are the same plain bytes.
    const std::string_view name = open_.back();
    const bool same = std::ranges::equal(raw_name, name, [](char raw, char byte) { return raw == byte && is_plain(raw); });
    if (!same && !equal_without_case(decoded(raw_name, decoded_), name)) throw xmlParser::error();
    open_.pop_back();
}

}  // namespace Vek
