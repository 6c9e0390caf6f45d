#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "docs/xml-example.h"
#include "quorvel/xml/entities.h"
#include "quorvel/xml/escape.h"
#include "quorvel/xml/xml_node.h"
#include "quorvel/xml/xml_parser.h"

TEST(xml_node, writes_attributes_in_order_then_inner_markup_children_and_text) {
    const std::pair<Vek::xmlNode, const char*> cases[] = {
        {{.name = "a", .attributes = {{"y", "<1>"}, {"x", "\"&'"}}, .text = " \t1 & 2"},
         "<a y=\"&lt;1&gt;\" x=\"&quot;&amp;&apos;\"> \t1 &amp; 2</a>"},
        {{.name = "a", .text = " 1", .inner = "<!-- -->"}, "<a><!-- -->1</a>"},
        {{.name = "a", .text = " <1>\n \t\x01 2\n\n 3"}, "<a>&lt;1&gt;\n2\n\n3</a>"},
        {{.name = "a",
          .text = " 1",
          .inner = "<!-- -->",
          .children = {{.name = "b", .children = {{.name = "c"}}}, {.name = "d"}}},
         "<a><!-- --><b><c></c></b><d></d>1</a>"},
    };
    for (const auto& [node, expected] : cases) {
        std::string out = "before ";
        Vek::writeNode(out, node);
        EXPECT_EQ(out, std::string("before ") + expected);
    }
}

TEST(xml_node, refuses_a_node_without_a_name) {
    std::string out;
    try {
        Vek::writeNode(out, {.name = "a", .children = {{.text = "1"}}});
        FAIL();
    } catch (const Vek::invalid_input& failure) {
        EXPECT_STREQ(failure.what(), "invalid input");
    }
}

// Each would take minutes if every `&` were scanned to its `;`, or to the end for lack of one.
TEST(entities, a_megabyte_of_what_is_no_reference_stays_as_it_is) {
    for (const char* piece : {"&", "&#x00000000000000000000000000000001"})
        for (const char* end : {"", "a;"}) {
            std::string text;
            while (text.size() < 1000000) text += piece;
            text += end;
            // The last piece alone may be one.
            const std::string begin = text.substr(0, text.rfind('&'));
            EXPECT_TRUE(Vek::decodeEntities(text.data(), text.size()).starts_with(begin)) << piece << end;
        }
    const std::string zeros = "&#" + std::string(1000000, '0') + "65;";
    EXPECT_EQ(Vek::decodeEntities(zeros.data(), zeros.size()), "A");
}

TEST(entities, a_character_ends_with_the_text) {
    EXPECT_EQ(Vek::decodeEntities("日本", 3), "日");
    EXPECT_THROW((void)Vek::decodeEntities("日本", 4), Vek::xmlParser::error);
}

TEST(xml_example, reads_what_it_has_written) {
    const std::string text = write_lists({{"A & B", {"/music/\"1\".flac", "/music/2.flac"}}, {"", {}}});
    const auto lists = read_lists("<!-- lists -->\n" + text);
    ASSERT_EQ(lists.size(), 2U);
    EXPECT_EQ(lists[0].name, "A & B");
    EXPECT_EQ(lists[0].paths, (std::vector<std::string>{"/music/\"1\".flac", "/music/2.flac"}));
    EXPECT_TRUE(lists[1].paths.empty());
}

TEST(xml_example, stands_in_the_documentation_as_it_is_compiled) {
    const auto content_of = [](const char* name) {
        std::ifstream file(std::string(DOCS_FOLDER) + "/" + name);
        return std::string(std::istreambuf_iterator(file), {});
    };
    const std::string example = content_of("xml-example.h");
    EXPECT_NE(content_of("xml-library.md").find("```cpp\n" + example + "```\n"), std::string::npos);
}
