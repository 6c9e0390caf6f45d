#include "quorvel/xml/entities.h"

#include <gtest/gtest.h>

#include "quorvel/xml/xml_parser.h"

// Each takes minutes if every `&` is looked at up to its `;`, or up to the end for lack of one.
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
