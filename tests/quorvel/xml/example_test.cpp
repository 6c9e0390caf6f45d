#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "docs/xml-example.h"

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
