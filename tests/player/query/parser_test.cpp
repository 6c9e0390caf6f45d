#include <gtest/gtest.h>

#include <fstream>

#include "player/query/query.h"
#include "tests/player/titleformat/fields.h"

namespace ostrevan::query {
namespace {

using titleformat::table_of_fields;

constexpr std::chrono::sys_seconds noon = std::chrono::sys_days{std::chrono::year{2024} / 5 / 31} + std::chrono::hours{12};

const table_of_fields played({{"artist", "Sigur Rós"},
                              {"title", "Hoppípolla (Live) OR \"not\""},
                              {"album artist", "Sigur Rós"},
                              {"tracknumber", "3/12"},
                              {"play_count", "5"},
                              {"last_played", "2024-05-30 23:59:59"},
                              {"added", "2020-02-29 00:00:00"},
                              {"date", "2005"},
                              {"rating_stars", ""}});
const table_of_fields never_played({{"artist", "σίσυφος"}, {"title", "7"}},
                                   {{"play_count", "0"}, {"last_played", "N/A"}, {"added", "N/A"}});

TEST(query, finds_what_it_asks_for) {
    const table_of_fields band(
        {{"artist", "Belle and Sebastian"}, {"title", "All or Nothing Sort of Limit 5 A"}, {"n", "3"}});
    for (const std::string& row : titleformat::rows_of(QUERY_TESTS "/queries.txt")) {
        const auto bar = row.find(" | ");
        const query parsed = parse(row.substr(bar + 3));
        std::string found;
        if (row.substr(0, bar).ends_with("band")) {
            found = parsed.matches(band, noon) ? "band" : "no band";
        } else {
            if (parsed.matches(played, noon)) found = "played";
            if (parsed.matches(never_played, noon)) found += found.empty() ? "never" : " never";
            if (found.empty()) found = "none";
        }
        EXPECT_EQ(found, row.substr(0, bar)) << row;
    }
    for (const auto* all : {"", " ALL "}) EXPECT_TRUE(parse(all).matches(never_played, noon));
    EXPECT_FALSE(parse("%artist% HAS \xFF").matches(played, noon));
}

TEST(query, tells_its_limit_and_the_fields_that_it_relies_on) {
    const auto parsed = parse("%Artist% IS x AND b MISSING OR \"%c%\" HAS y AND \"%d%%e%\" IS z SORT BY F LIMIT 12 ");
    EXPECT_EQ(parsed.limit(), 12U);
    std::string names;
    for (const auto& [name, position] : parsed.fields()) names += name + std::to_string(position) + ' ';
    EXPECT_EQ(names, "artist0 c31 f69 ");
    EXPECT_EQ(parsed.sort()->by.only_field(), "f");
    EXPECT_EQ(parse("LIMIT 3").limit(), 3U);
}

TEST(query, combines_conditions_by_precedence) {
    const auto value_of = [](std::string_view form) {
        std::string text;
        for (const char c : form) text += c == '1' ? "ALL" : c == '0' ? "NOT ALL" : std::string(1, c);
        return parse(text).matches(played, noon);
    };
    for (const std::string_view form :
         {"1 OR 0 AND 0", "0 AND 0 OR 1", "NOT (0 AND 0)", "NOT 1 OR 1", "NOT NOT 1", "0 OR 0 OR 1", "((1)) AND (NOT 0)"})
        EXPECT_TRUE(value_of(form)) << form;
    for (const std::string_view form : {"(1 OR 0) AND 0", "NOT 0 AND 0", "1 AND 1 AND 0", "0 OR NOT(1)"})
        EXPECT_FALSE(value_of(form)) << form;
}

TEST(query, sort_takes_fields_and_scripts) {
    const auto sorted_by = [](std::string_view text) {
        const query parsed = parse(text);
        return (parsed.sort()->descending ? "down " : "up ") + parsed.sort()->by.run(played).text;
    };
    EXPECT_EQ(sorted_by("SORT BY %artist%"), "up Sigur Rós");
    EXPECT_EQ(sorted_by("ALL SORT ASCENDING BY play_count "), "up 5");
    EXPECT_EQ(sorted_by("%artist% IS Sigur SORT DESCENDING BY %artist% %date% LIMIT 2"), "down Sigur Rós 2005");
    EXPECT_EQ(sorted_by("SORT BY \"$if(%title%,\"\"%date%)\" LIMIT 2"), "up \"2005");
}

TEST(query, examples_of_the_document_are_accepted) {
    std::ifstream file(DOCS_FOLDER "/query-language.md");
    int checked = 0;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("```")) inside = line == "```query";
        else if (inside) {
            ++checked;
            EXPECT_NO_THROW((void)parse(line)) << line;
        }
    }
    EXPECT_GT(checked, 0);
}

TEST(query, message_points_at_the_mistake) {
    for (const std::string& text : titleformat::rows_of(QUERY_TESTS "/mistakes.txt")) {
        const auto place = text.find('^'), end = text.rfind('^');
        const auto wrong = std::string(text.substr(0, place)).append(text, place + 1, end - place - 1);
        try {
            (void)parse(wrong);
            ADD_FAILURE() << text;
        } catch (const query_error& error) {
            const std::string message = error.what(),
                              tail = "\n  " + wrong + "\n  " + std::string(error.position(), ' ') + '^';
            EXPECT_TRUE(message.starts_with(text.substr(end + 1)) && message.ends_with(tail)) << message;
            EXPECT_EQ(error.position(), wrong.find_first_not_of(' ', place) == std::string::npos ? wrong.size() : place)
                << text;
        }
    }
}

TEST(query, deep_nesting_is_refused_and_long_chains_are_not) {
    EXPECT_THROW((void)parse(std::string(100'000, '(')), query_error);
    std::string negations, chain = "ALL";
    for (int i = 0; i < 20'000; ++i) {
        negations += "NOT ";
        chain += " OR ALL";
    }
    EXPECT_THROW((void)parse(negations + "ALL"), query_error);
    EXPECT_TRUE(parse(chain).matches(played, noon));
}

}  // namespace
}  // namespace ostrevan::query
