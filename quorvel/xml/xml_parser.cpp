#include "quorvel/xml/xml_parser.h"

#include <algorithm>

#include "quorvel/xml/bytes.h"
#include "quorvel/xml/content_end.h"
#include "quorvel/xml/markup.h"
#include "quorvel/xml/namespaces.h"
#include "quorvel/xml/start_tag.h"

namespace Vek {

void xmlParser::parse(const xmlContext& parent, const char* buffer, std::size_t length) {
    const std::string_view text(buffer, length);
    start_tag tag;
    namespaces scope(parent);
    content_end end_tags(*this, text);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t open = std::min(text.find('<', at), text.size());
        if (open > at) onText(buffer + at, open - at);
        if (open == text.size()) return;
        at = after_markup(text, open);
        if (at != open) continue;

        at = tag.read(text, open);
        const bool empty = isEmptyElement(tag.name.c_str()) || tag.self_closing;
        const xmlContext& context = scope.enter(tag.attributes);
        const auto [uri, local] = scope.resolve(tag.name);
        if (empty) {
            onElem(context, uri, local, tag.attributes, nullptr, 0);
        } else {
            std::size_t end = at;
            try {
                end = end_tags.find(tag.name, at);
            } catch (const error&) {
                if (takesUnfinished(tag.name.c_str()))
                    onElem(context, uri, local, tag.attributes, buffer + at, text.size() - at);
                throw;
            }
            onElem(context, uri, local, tag.attributes, buffer + at, end - at);
            // The first one, in quotes or not.
            at = required(text.find('>', end)) + 1;
        }
        scope.leave();
    }
}

}  // namespace Vek
