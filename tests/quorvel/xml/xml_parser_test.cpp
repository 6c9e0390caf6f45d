#include "quorvel/xml/xml_parser.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/quorvel/xml/event_list.h"

namespace {

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    while (times-- > 0) all += text;
    return all;
}

/// Hands each element to a function and does nothing else.
template <typename Function>
class for_each_element : public Vek::xmlParser {
public:
    for_each_element(std::string_view text, Function function) : function_(function) { parse({}, text.data(), text.size()); }
    void onElem(const Vek::xmlContext& context, const char*, const char*, const Vek::xmlAttributes& attributes,
                const char* content, std::size_t length) override {
        function_(context, attributes, std::string_view(content, length));
    }

private:
    Function function_;
};

}  // namespace

TEST(xml_parser, nests_as_deep_as_the_buffer_is_long) {
    const std::string inside = repeated("<a b=\">\">", 100000) + repeated("</a>", 100000);
    std::size_t seen = 0;
    for_each_element("<r>" + inside + "</r>", [&](auto&, auto&, std::string_view content) { seen += content == inside; });
    EXPECT_EQ(seen, 1U);
    EXPECT_EQ(support::event_list::of(repeated("<a>", 100000)).message, "XML error");
}

// The storage of a large element is used again for small ones and for others that are just large enough to be indexed.
TEST(xml_parser, forgets_the_attributes_of_the_element_before) {
    std::string many;
    for (int i = 0; i < 40; ++i) many += " n" + std::to_string(i) + "=\"\"";
    const std::string seventeen = many.substr(0, many.find(" n17"));
    std::vector<std::size_t> sizes;
    for_each_element("<a" + many + "/><b n39=\"1\"/><c" + seventeen + "/><d" + seventeen + " xmlns=\"u\"/><e/>",
                     [&](auto&, const Vek::xmlAttributes& attributes, auto) {
                         sizes.push_back(attributes.size());
                         EXPECT_EQ(attributes.find("n39") != nullptr, sizes.size() <= 2);
                         EXPECT_EQ(attributes.find("xmlns"), nullptr);
                     });
    EXPECT_EQ(sizes, (std::vector<std::size_t>{40, 1, 17, 17, 0}));
    EXPECT_EQ(support::event_list::of("<a" + many + " n20=\"\"/>").message, "XML error");
}

TEST(xml_parser, declarations_hold_for_their_element_alone) {
    std::string many = "<a xmlns:p=\"outer\"";
    for (int i = 0; i < 100000; ++i) many += " xmlns:n" + std::to_string(i) + "=\"u\"";
    many += "/>" + repeated("<b xmlns:p=\"1\" xmlns:q=\"2\"/><c/>", 100000);
    std::vector<std::size_t> sizes;
    for_each_element(many, [&](const Vek::xmlContext& context, const Vek::xmlAttributes& attributes, auto) {
        sizes.push_back(context.size());
        EXPECT_TRUE(attributes.empty());
    });
    ASSERT_EQ(sizes.size(), 200001U);
    EXPECT_EQ(sizes[0], 100001U);
    for (std::size_t i = 1; i < sizes.size(); ++i) ASSERT_EQ(sizes[i], i % 2 == 1 ? 2U : 0U);
}

TEST(xml_parser, tells_where_raw_content_begins) {
    class asked : public Vek::xmlParser {
    public:
        void onElem(const Vek::xmlContext&, const char*, const char*, const Vek::xmlAttributes&, const char*,
                    std::size_t) override {}
        bool isRawContent(const char* name, std::size_t length, std::size_t position) override {
            questions += name + (" " + std::to_string(length)) + " " + std::to_string(position) + "\n";
            return false;
        }
        std::string questions;
    } parser;
    const std::string_view text = "<a><p:b c=\"\"></p:b><d/></a>";
    parser.parse({}, text.data(), text.size());
    EXPECT_EQ(parser.questions, "a 27 3\np:b 27 13\n");
}
