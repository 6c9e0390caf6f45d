#include "quorvel/xml/xml_node.h"

#include <gtest/gtest.h>

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
