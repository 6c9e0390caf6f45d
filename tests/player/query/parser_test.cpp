#include <gtest/gtest.h>

#include <fstream>

#include "player/query/query.h"
#include "tests/player/titleformat/fields.h"

namespace ostrevan::query {
namespace {

using titleformat::table_of_fields;

const query_clock noon = query_clock::at("2024-05-31 12:00:00");

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

/// What each of the queries says of the played track and of the other.
void expect(bool first, bool second, std::initializer_list<std::string_view> queries) {
    for (const auto text : queries) {
        const query parsed = parse(text);
        EXPECT_EQ(parsed.matches(played, noon), first) << text;
        EXPECT_EQ(parsed.matches(never_played, noon), second) << text;
    }
}

TEST(query, compares_texts_numbers_and_presence) {
    expect(true, true, {"", " ALL ", "NOT %play_count% GREATER 5"});
    expect(true, false,
           {"%artist% IS sigur rós", "%ARTIST% IS \"SIGUR RÓS\"", "artist HAS RÓ", "album artist HAS rós",
            "%title% HAS polla (live)", "(%title% HAS polla (live))", "%title% HAS \") OR \"\"NOT\"\"\"",
            "%rating_stars% IS \"\"", "\"%artist% - %title%\" HAS rós - hopp", "\"$len(%artist%)\" EQUAL 9",
            "%play_count% GREATER 4", "%play_count% LESS 6", "%tracknumber% EQUAL 3", "%play_count% PRESENT",
            "%artist% IS Sigur Ro\u0301s"});
    expect(false, true,
           {"%artist% IS ΣΊΣΥΦΟΣ", "%title% EQUAL +7", "%title% GREATER -9223372036854775808", "%play_count% MISSING",
            "NOT %play_count% GREATER 3"});
    expect(false, false, {"%artist% IS Sigur", "%artist% LESS 1", "%artist% HAS \xFF"});
}

TEST(query, words_count_in_small_letters_where_what_belongs_after_them_follows) {
    const table_of_fields band(
        {{"artist", "Belle and Sebastian"}, {"title", "All or Nothing Sort of Limit 5 A"}, {"n", "3"}});
    for (const std::string_view text : {"%artist% is belle and sebastian", "artist is belle and sebastian and n greater 2",
                                        "artist is x or not (n missing)", "artist has belle or \"$len(%n%)\" equal 2",
                                        "title has all or nothing sort of limit 5 a", "artist has belle sort by title",
                                        "artist has belle limit 5", "artist is x oR Not n is 4"})
        EXPECT_TRUE(parse(text).matches(band, noon)) << text;
    for (const std::string_view text : {"artist is belle and sebastian And n Greater 3", "artist is belle AND sebastian",
                                        "not n is 3", "last_played during last 2 days"})
        EXPECT_FALSE(parse(text).matches(band, noon)) << text;
}

TEST(query, words_without_an_operator_are_searched_for_in_all_that_names_a_track) {
    expect(true, false, {"rós POLLA", "\"ur ró\"", "rós and live", "polla (live)", "not rós", "2005 sort by title"});
    expect(false, true, {"NOT rós"});
    expect(true, true, {"all", "rós OR σίσυφος"});
    expect(false, false, {"rós nothere", "\"rós ur\"", "23:59:59", "all rós"});
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

TEST(query, compares_times_as_periods) {
    expect(true, false,
           {"%last_played% BEFORE 2024-05-31", "%last_played% AFTER 2024-05-29",
            "%last_played% AFTER \"2024-05-30 23:58\" AND ALL", "%last_played% SINCE 2024-05-30 23:59:59",
            "%last_played% DURING 2024-05-30 23", "%added% DURING 2020-02", "%date% DURING 2005", "%date% BEFORE 2006",
            "%date% AFTER 2004-12"});
    expect(false, false,
           {"%last_played% BEFORE 2024", "%last_played% BEFORE 2024-05-30 23:59:59", "%last_played% AFTER 2024-05-30 23:59",
            "%last_played% SINCE 2024-06", "%last_played% DURING 2024-04", "%added% DURING 2020-02-28",
            "%added% BEFORE 2020-02-29", "%date% DURING 2005-01", "%date% BEFORE 2005-06", "%tracknumber% SINCE 0000"});
}

TEST(query, during_last_counts_back_from_the_clock) {
    // When it was played, what the clock shows, how far back.
    const auto matches = [](std::string_view text) {
        const table_of_fields track({{"last_played", std::string(text.substr(0, 19))}});
        return parse("%last_played% DURING LAST " + std::string(text.substr(40)))
            .matches(track, query_clock::at(text.substr(20, 19)));
    };
    for (const std::string_view text :
         {"2024-05-24 12:00:00 2024-05-31 12:00:00 1 WEEK", "2024-05-31 12:00:00 2024-05-31 12:00:00 WEEK",
          "2023-12-31 23:00:00 2024-01-01 00:30:00 90 MINUTES", "2023-12-31 23:30:00 2024-01-01 00:30:00 HOUR",
          "2024-02-28 10:00:00 2024-03-01 10:00:00 2 DAYS", "2024-02-29 08:00:00 2024-03-31 08:00:00 1 MONTH",
          "2023-11-15 00:00:00 2024-02-15 00:00:00 3 MONTHS", "2023-02-28 00:00:00 2024-02-29 00:00:00 YEAR",
          "0000-01-01 00:00:00 2024-02-29 00:00:00 975000 YEARS", "0000-01-01 00:00:00 2024-02-29 00:00:00 1000000 WEEKS"})
        EXPECT_TRUE(matches(text)) << text;
    for (const std::string_view text :
         {"2024-05-24 11:59:59 2024-05-31 12:00:00 1 WEEK", "2024-05-31 12:00:01 2024-05-31 12:00:00 WEEK",
          "2023-12-31 23:00:00 2024-01-01 00:30:00 89 MINUTES", "2024-02-28 10:00:00 2024-03-01 10:00:00 1 DAY",
          "2024-02-29 07:59:59 2024-03-31 08:00:00 1 MONTH"})
        EXPECT_FALSE(matches(text)) << text;
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
    // The first caret stands before the mistake; the second parts the query from the beginning of the message.
    for (const std::string_view text : {"%artist% ^iss Foo^expected IS, HAS,",
                                        "^%artist^this '%' is never closed",
                                        "^%% IS x^expected the name of a field",
                                        "%artist% IS ^AND ALL^expected a text",
                                        "%artist% IS ^\"Foo^this quote is never closed",
                                        "%artist% IS \"Foo\" ^bar^expected AND, OR, SORT, LIMIT or the end",
                                        "%n% GREATER ^many^expected a whole number",
                                        "%n% GREATER ^3.5^expected a whole number",
                                        "%t% BEFORE ^2023-02-29^expected a time such as",
                                        "%t% SINCE ^2023-02-^expected a time such as",
                                        "%t% DURING LAST ^0 DAYS^expected a number from 1",
                                        "%t% DURING LAST 2 ^FORTNIGHTS^expected MINUTES,",
                                        "^(ALL^this '(' is never closed",
                                        "(ALL ^ALL^expected AND, OR or ')'",
                                        "ALL^)^')' without '('",
                                        "ALL AND^ ^expected a condition",
                                        "^AND ALL^expected a condition",
                                        "^IS Foo^expected a condition",
                                        "ALL LIMIT ^0^expected a number from 1",
                                        "ALL LIMIT ^many^expected a number from 1",
                                        "ALL SORT ^%artist%^expected ASCENDING, DESCENDING or BY",
                                        "SORT BY^ ^expected a field or a script",
                                        "SORT BY ^$foo(%a%)^unknown function $foo",
                                        "\"\"\"%a%\"\" ^$foo()\" IS x^unknown function $foo",
                                        "\"^artist\" IS x^this script shows no field",
                                        "^$len(%a%) LESS 3^a script stands in double quotes"}) {
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
