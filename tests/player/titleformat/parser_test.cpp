#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/player/titleformat/fields.h"

namespace ostrevan::titleformat {
namespace {

const table_of_fields track({{"artist", "Björk"},
                             {"title", "Jóga"},
                             {"empty", ""},
                             {"album artist", "B"},
                             {"a", "Straße"},
                             {"n", "3/12"},
                             {"zero", "0"},
                             {"blank", "\u00A0 x y\t"},
                             {"bad", "\xFFz\xC3"}},
                            {{"last_played", "N/A"}, {"play_count", "0"}, {"none", "?"}});

TEST(script, shows_fields_and_what_functions_make_of_them) {
    constexpr std::string_view arrow = " →";
    for (const std::string& row : rows_of(SCRIPT_TESTS "/scripts.txt")) {
        const auto bar = row.find(" | "), end = row.rfind(arrow);
        const result made = compile(row.substr(bar + 3, end - bar - 3)).run(track);
        EXPECT_EQ((made.found ? "found" : "absent") + (made.text.empty() ? "" : ' ' + made.text),
                  row.substr(0, bar) + row.substr(end + arrow.size()))
            << row;
    }
    EXPECT_EQ(compile("$upper(%bad%)").run(track).text, "\xFFZ\xC3");
    EXPECT_EQ(compile("").run(track).text, "");
}

TEST(script, mistakes_are_named_with_their_place) {
    for (const std::string& row : rows_of(SCRIPT_TESTS "/mistakes.txt")) {
        const auto place = row.find('^'), end = row.rfind('^');
        const auto source = row.substr(0, place) + row.substr(place + 1, end - place - 1);

        try {
            (void)compile(source);
            ADD_FAILURE() << source;
        } catch (const script_error& error) {
            EXPECT_EQ(error.reason(), row.substr(end + 1)) << source;
            EXPECT_EQ(error.position(), place) << source;
        }
    }
}

TEST(script, deep_nesting_is_refused_and_deep_enough_nesting_runs) {
    EXPECT_THROW((void)compile(std::string(100'000, '[')), script_error);
    std::string calls;
    for (int i = 0; i < 100'000; ++i) calls += "$upper(";
    EXPECT_THROW((void)compile(calls), script_error);

    std::string allowed(200, '[');
    allowed += "%artist%" + std::string(200, ']');
    std::string side_by_side;
    for (int i = 0; i < 300; ++i) side_by_side += "$if([%genre%],x)";
    EXPECT_EQ(compile(allowed + side_by_side).run(track).text, "Björk");
}

TEST(script, result_is_bounded_whatever_the_script_asks_for) {
    std::string script = "ä";
    for (int i = 0; i < 20; ++i) script = "$repeat(" + script + ",999999999)";
    for (const std::string& source :
         {script + script, std::string("$pad(x,9223372036854775807,€)"), std::string("$pad(xy,9223372036854775807,€)"),
          std::string("$num(1,99999999999999999999)")}) {
        const std::string text = compile(source).run(track).text;
        EXPECT_LE(text.size(), script::max_result);
        EXPECT_GT(text.size(), script::max_result - 4);
        EXPECT_TRUE(text.ends_with("ä") || text.ends_with("€") || text.ends_with('1')) << "no character is cut";
    }
    std::string growing = "xx";
    for (int i = 0; i < 12; ++i) growing = "$replace(" + growing + ",x,xxxx)";
    EXPECT_EQ(compile(growing).run(track).text.size(), script::max_result);
}

TEST(script, appends_and_leaves_earlier_text_alone) {
    std::string text = "before ";
    EXPECT_TRUE(compile("$upper(%title%)[%genre%]").run(track, text));
    EXPECT_EQ(text, "before JÓGA");
}

TEST(script, one_script_serves_several_threads) {
    const script shared = compile("$upper(%artist%)$pad($left(%title%,2),5,.)[%genre%]");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([copy = shared] {
            for (int turn = 0; turn < 500; ++turn) ASSERT_EQ(copy.run(track).text, "BJÖRKJó...");
        });
    for (auto& thread : threads) thread.join();
}

}  // namespace
}  // namespace ostrevan::titleformat
