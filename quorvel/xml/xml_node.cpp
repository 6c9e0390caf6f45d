#include "quorvel/xml/xml_node.h"

#include "quorvel/xml/bytes.h"
#include "quorvel/xml/escape.h"

namespace Vek {
namespace {

/// Line by line, each without its indentation.
void append_lines(std::string& out, std::string_view text) {
    for (;;) {
        const std::size_t end = text.find('\n');
        appendEscaped(out, without_leading_blanks(text.substr(0, end)));
        if (end == std::string_view::npos) return;
        out.push_back('\n');
        text.remove_prefix(end + 1);
    }
}

}  // namespace

void writeNode(std::string& out, const xmlNode& node) {
    if (node.name.empty()) throw invalid_input();
    out.append("<").append(node.name);
    for (const auto& [name, value] : node.attributes) {
        out.append(" ").append(name).append("=\"");
        appendEscaped(out, value);
        out.push_back('"');
    }
    out.push_back('>');
    if (node.inner.empty() && node.children.empty() && node.text.find('\n') == std::string::npos) {
        appendEscaped(out, node.text);
    } else {
        out.append(node.inner);
        for (const xmlNode& child : node.children) writeNode(out, child);
        append_lines(out, node.text);
    }
    out.append("</").append(node.name).append(">");
}

}  // namespace Vek
