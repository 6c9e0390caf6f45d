#include "quorvel/xml/xml_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

/// Writes down what it is told, and reads the content of each element with itself.
class recorder : public Vek::xmlParser {
public:
    std::string seen;
    std::set<std::string> empty{};
    std::set<std::string> raw{};

    void onElem(const Vek::xmlContext& context, const char* ns, const char* name, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override {
        seen += std::string("<") + (*ns != 0 ? "{" + std::string(ns) + "}" : "") + name;
        std::vector<std::pair<std::string, std::string>> sorted(attributes.begin(), attributes.end());
        std::ranges::sort(sorted);
        for (const auto& [key, value] : sorted) seen += " " + key + "=[" + value + "]";
        if (content == nullptr) {
            seen += "/>";
            return;
        }
        seen += ">";
        if (raw.contains(name)) seen.append(content, length);
        else parse(context, content, length);
        seen += "</>";
    }
    void onText(const char* text, std::size_t length) override { seen.append("'").append(text, length).append("'"); }
    bool isEmptyElement(const char* name) override { return empty.contains(name); }
    bool isRawContent(const char* name, std::size_t, std::size_t) override { return raw.contains(name); }
};

std::string events_of(std::string_view text) {
    recorder parser;
    try {
        parser.parse({}, text.data(), text.size());
    } catch (const Vek::xmlParser::error& failure) {
        parser.seen += std::string("!") + failure.what();
    }
    return parser.seen;
}

}  // namespace

TEST(xml_parser, hands_over_the_elements_and_texts_of_a_level) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"text", "'text'"},
        {"<a x=\"1>2\"/>", "<a x=[1>2]/>"},
        {"<a x='1'/>", "!XML error"},
        {"<a b=\"&AMP;&#65;&#x42;&67;&bogus;\"/>", "<a b=[&ABC&bogus;]/>"},
        {"<a>&lt;</a>", "<a>'&lt;'</>"},
        {"<Entry></ENTRY>", "<Entry></>"},
        {"<a></b>", "!XML error"},
        {"<!-- x --><!DOCTYPE y><![CDATA[z]]>", ""},
        {"<?xml version=\"1.0\"?>", "!XML error"},
        {"<s:e xmlns:s=\"urn:x\" b=\"1\"><t:e/><s:f/></s:e>", "<{urn:x}e b=[1]><t:e/><{urn:x}f/></>"},
        {"<r><a> <b><c/></b><!-- > --></a></r>", "<r><a>' '<b><c/></></></>"},
        {"<a/>x</a>", "<a/>'x'!XML error"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(events_of(text), expected) << text;
}
