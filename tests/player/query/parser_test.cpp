#include <gtest/gtest.h>

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

struct example {
    std::string_view text;
    bool played, never_played;
};

void expect_all(std::initializer_list<example> examples) {
    for (const auto& [text, first, second] : examples) {
        const query parsed = parse(text);
        EXPECT_EQ(parsed.matches(played, noon), first) << text;
        EXPECT_EQ(parsed.matches(never_played, noon), second) << text;
    }
}

TEST(query, compares_texts_numbers_and_presence) {
    expect_all({
        {"", true, true},
        {" ALL ", true, true},
        {"%artist% IS sigur rós", true, false},
        {"%ARTIST% IS \"SIGUR RÓS\"", true, false},
        {"%artist% IS Sigur", false, false},
        {"%artist% IS ΣΊΣΥΦΟΣ", false, true},
        {"artist HAS RÓ", true, false},
        {"album artist HAS rós", true, false},
        {"%title% HAS polla (live)", true, false},
        {"(%title% HAS polla (live))", true, false},
        {"%title% HAS \") OR \"\"NOT\"\"\"", true, false},
        {"%rating_stars% IS \"\"", true, false},
        {"\"%artist% - %title%\" HAS rós - hopp", true, false},
        {"\"$len(%artist%)\" EQUAL 9", true, false},
        {"%play_count% GREATER 4", true, false},
        {"%play_count% LESS 6", true, false},
        {"%tracknumber% EQUAL 3", true, false},
        {"%title% EQUAL +7", false, true},
        {"%title% GREATER -9223372036854775808", false, true},
        {"%artist% LESS 1", false, false},
        {"%play_count% PRESENT", true, false},
        {"%play_count% MISSING", false, true},
        {"NOT %play_count% GREATER 3", false, true},
        {"NOT %play_count% GREATER 5", true, true},
    });
}

TEST(query, combines_conditions_by_precedence) {
    constexpr std::string_view yes = "ALL", no = "NOT ALL";
    const struct {
        std::string_view form;
        bool expected;
    } cases[] = {
        {"1 OR 0 AND 0", true},   {"(1 OR 0) AND 0", false},   {"0 AND 0 OR 1", true}, {"NOT 0 AND 0", false},
        {"NOT (0 AND 0)", true},  {"NOT 1 OR 1", true},        {"NOT NOT 1", true},    {"0 OR 0 OR 1", true},
        {"1 AND 1 AND 0", false}, {"((1)) AND (NOT 0)", true}, {"0 OR NOT(1)", false},
    };
    for (const auto& [form, expected] : cases) {
        std::string text;
        for (const char c : form) text += c == '1' ? std::string(yes) : c == '0' ? std::string(no) : std::string(1, c);
        EXPECT_EQ(parse(text).matches(played, noon), expected) << form;
    }
    expect_all({{"%artist% IS Sigur Rós AND NOT %title% IS x OR %artist% IS nobody", true, false}});
}

TEST(query, compares_times_as_periods) {
    expect_all({
        {"%last_played% BEFORE 2024", false, false},
        {"%last_played% BEFORE 2024-05-31", true, false},
        {"%last_played% BEFORE 2024-05-30 23:59:59", false, false},
        {"%last_played% AFTER 2024-05-29", true, false},
        {"%last_played% AFTER 2024-05-30 23:59", false, false},
        {"%last_played% AFTER \"2024-05-30 23:58\" AND ALL", true, false},
        {"%last_played% SINCE 2024-05-30 23:59:59", true, false},
        {"%last_played% SINCE 2024-06", false, false},
        {"%last_played% DURING 2024-05-30 23", true, false},
        {"%last_played% DURING 2024-04", false, false},
        {"%added% DURING 2020-02", true, false},
        {"%added% DURING 2020-02-28", false, false},
        {"%added% BEFORE 2020-02-29", false, false},
        {"%date% DURING 2005", true, false},
        {"%date% DURING 2005-01", false, false},
        {"%date% BEFORE 2006", true, false},
        {"%date% BEFORE 2005-06", false, false},
        {"%date% AFTER 2004-12", true, false},
        {"%tracknumber% SINCE 0000", false, false},
    });
}

TEST(query, during_last_counts_back_from_the_clock) {
    const struct {
        std::string_view within, last_played, now;
        bool matches;
    } cases[] = {
        {"LAST 1 WEEK", "2024-05-24 12:00:00", "2024-05-31 12:00:00", true},
        {"LAST 1 WEEK", "2024-05-24 11:59:59", "2024-05-31 12:00:00", false},
        {"LAST WEEK", "2024-05-31 12:00:00", "2024-05-31 12:00:00", true},
        {"LAST WEEK", "2024-05-31 12:00:01", "2024-05-31 12:00:00", false},
        {"LAST 90 MINUTES", "2023-12-31 23:00:00", "2024-01-01 00:30:00", true},
        {"LAST 89 MINUTES", "2023-12-31 23:00:00", "2024-01-01 00:30:00", false},
        {"LAST HOUR", "2023-12-31 23:30:00", "2024-01-01 00:30:00", true},
        {"LAST 2 DAYS", "2024-02-28 10:00:00", "2024-03-01 10:00:00", true},
        {"LAST 1 DAY", "2024-02-28 10:00:00", "2024-03-01 10:00:00", false},
        {"LAST 1 MONTH", "2024-02-29 08:00:00", "2024-03-31 08:00:00", true},
        {"LAST 1 MONTH", "2024-02-29 07:59:59", "2024-03-31 08:00:00", false},
        {"LAST 3 MONTHS", "2023-11-15 00:00:00", "2024-02-15 00:00:00", true},
        {"LAST YEAR", "2023-02-28 00:00:00", "2024-02-29 00:00:00", true},
        {"LAST 975000 YEARS", "0000-01-01 00:00:00", "2024-02-29 00:00:00", true},
        {"LAST 1000000 WEEKS", "0000-01-01 00:00:00", "2024-02-29 00:00:00", true},
    };
    for (const auto& [within, last_played, now, matches] : cases) {
        const table_of_fields track({{"last_played", std::string(last_played)}});
        const query parsed = parse("%last_played% DURING " + std::string(within));
        EXPECT_EQ(parsed.matches(track, query_clock::at(now)), matches) << within << ' ' << last_played;
    }
}

TEST(query, recently_played_and_recently_added_work_as_the_menu_writes_them) {
    for (const std::string name : {"last_played", "added"}) {
        const query parsed = parse('%' + name + "% DURING LAST 1 WEEK SORT DESCENDING BY %" + name + '%');
        const table_of_fields recent({{name, "2024-05-25 09:00:00"}}), old({{name, "2024-05-23 09:00:00"}});
        EXPECT_TRUE(parsed.matches(recent, noon));
        EXPECT_FALSE(parsed.matches(old, noon));
        EXPECT_FALSE(parsed.matches(never_played, noon));
        ASSERT_TRUE(parsed.sort());
        EXPECT_TRUE(parsed.sort()->descending);
        EXPECT_EQ(parsed.sort()->by.run(recent).text, "2024-05-25 09:00:00");
    }
}

TEST(query, sort_takes_fields_and_scripts) {
    const struct {
        std::string_view text, sorted_by;
        bool descending;
    } cases[] = {
        {"SORT BY %artist%", "Sigur Rós", false},
        {"ALL SORT ASCENDING BY play_count ", "5", false},
        {"%artist% IS Sigur SORT DESCENDING BY %artist% %date%", "Sigur Rós 2005", true},
        {"SORT BY \"$if(%title%,\"\"%date%)\"", "\"2005", false},
    };
    for (const auto& [text, sorted_by, descending] : cases) {
        const query parsed = parse(text);
        ASSERT_TRUE(parsed.sort()) << text;
        EXPECT_EQ(parsed.sort()->by.run(played).text, sorted_by) << text;
        EXPECT_EQ(parsed.sort()->descending, descending) << text;
    }
    EXPECT_FALSE(parse("%artist% IS x").sort());
}

TEST(query, message_points_at_the_mistake) {
    // The caret stands in the second line, below the place in the first.
    const struct {
        std::string_view query, caret, reason;
    } cases[] = {
        {"%artist% is Foo", "         ^", "expected IS, HAS,"},
        {"artist is Foo", "       ^", "expected IS, HAS,"},
        {"%artist", "^", "this '%' is never closed"},
        {"%% IS x", "^", "expected the name of a field"},
        {"%artist% IS AND ALL", "            ^", "expected a text"},
        {"%artist% IS \"Foo", "            ^", "this quote is never closed"},
        {"%artist% IS \"Foo\" bar", "                  ^", "expected AND, OR, SORT or the end"},
        {"%n% GREATER many", "            ^", "expected a whole number"},
        {"%n% GREATER 3.5", "            ^", "expected a whole number"},
        {"%t% BEFORE 2023-02-29", "           ^", "expected a time such as"},
        {"%t% SINCE 2023-02-", "          ^", "expected a time such as"},
        {"%t% DURING LAST 0 DAYS", "                ^", "expected a number from 1"},
        {"%t% DURING LAST 2 FORTNIGHTS", "                  ^", "expected MINUTES,"},
        {"(ALL", "^", "this '(' is never closed"},
        {"(ALL ALL", "     ^", "expected AND, OR or ')'"},
        {"ALL)", "   ^", "')' without '('"},
        {"ALL AND", "       ^", "expected a condition"},
        {"AND ALL", "^", "expected a condition"},
        {"ALL SORT %artist%", "         ^", "expected ASCENDING, DESCENDING or BY"},
        {"SORT BY ", "        ^", "expected a field or a script"},
        {"SORT BY $foo(%a%)", "        ^", "unknown function $foo"},
        {"\"\"\"%a%\"\" $foo()\" IS x", "         ^", "unknown function $foo"},
        {"\"artist\" IS x", " ^", "this script shows no field"},
        {"$len(%a%) LESS 3", "^", "a script stands in double quotes"},
    };
    for (const auto& [text, caret, reason] : cases) {
        try {
            (void)parse(text);
            ADD_FAILURE() << text;
        } catch (const query_error& error) {
            const std::string message = error.what(), tail = "\n  " + std::string(text) + "\n  " + std::string(caret);
            EXPECT_TRUE(message.starts_with(reason) && message.ends_with(tail)) << message;
            EXPECT_EQ(error.position(), caret.size() - 1) << text;
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
