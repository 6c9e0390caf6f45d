#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/player/titleformat/fields.h"

namespace ostrevan::titleformat {
namespace {

const table_of_fields track({{"artist", "Björk"}, {"title", "Jóga"}, {"empty", ""}, {"album artist", "B"}},
                            {{"last_played", "N/A"}, {"play_count", "0"}});

TEST(script, shows_fields_sections_and_literal_text) {
    expect_each(track, true,
                {"%ARTIST% - %Title% → Björk - Jóga", "%album artist% → B", "[%artist%: %last_played%] → Björk: N/A",
                 "[%empty%|] → |", "[%artist%[ (%genre%)]] [[%genre%] %title%] → Björk  Jóga",
                 "[%artist%, (%title%)] → Björk, (Jóga)"});
    expect_each(
        track, false,
        {" → ", "plain → plain", "a, (b) 100%% $$5 ''x'' '[it''s %here%]' → a, (b) 100% $5 'x' [it's %here%]",
         "%last_played% → N/A", "[last: %last_played%]x%play_count% → x0", "[no field] → ", "[[[%genre%]x]y]z → z",
         "$if(%artist%,(a,b),c) → (a,b)", "$if(%artist%,[%genre%],x) → ", "$IF(%genre%,a)| → |", "$upper('a,b)') → A,B)"});
}

TEST(script, mistakes_are_named_with_their_place) {
    const struct {
        std::string_view script, reason;
        std::size_t position;
    } mistakes[] = {
        {"ab %artist", "this '%' is never closed (a percent sign is written %%)", 3},
        {"ab [%artist%", "this '[' is never closed", 3},
        {"$if(%a%,[x)", "this '[' is never closed", 8},
        {"ab]", "']' without '['", 2},
        {"a 'b", "this quote is never closed (a quote itself is written '')", 2},
        {"'it''s", "this quote is never closed (a quote itself is written '')", 0},
        {"x$upper(%artist%", "')' is missing at the end of $upper", 1},
        {"$if(%a%,:()", "')' is missing at the end of $if", 0},
        {"$nosuch(1)", "unknown function $nosuch", 0},
        {"$upper x", "'(' is missing after $upper", 6},
        {"5 $ 6", "a function's name must follow '$' (a dollar sign is written $$)", 2},
        {"$upper()", "$upper takes 1 argument, not 0", 0},
        {"$left(a)", "$left takes 2 arguments, not 1", 0},
        {"$if(a,b,c,d)", "$if takes 2 to 3 arguments, not 4", 0},
        {"$add(1)", "$add takes at least 2 arguments, not 1", 0},
    };
    for (const auto& [source, reason, position] : mistakes) {
        try {
            (void)compile(source);
            ADD_FAILURE() << source;
        } catch (const script_error& error) {
            EXPECT_EQ(error.reason(), reason) << source;
            EXPECT_EQ(error.position(), position) << source;
        }
    }
}

TEST(script, message_points_into_the_script) {
    try {
        (void)compile("%title% $nosuch(%artist%)");
        FAIL();
    } catch (const script_error& error) {
        EXPECT_STREQ(error.what(), "unknown function $nosuch\n  %title% $nosuch(%artist%)\n          ^");
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
         {script + script, std::string("$pad(x,9223372036854775807,€)"), std::string("$num(1,99999999999999999999)")}) {
        const std::string text = compile(source).run(track).text;
        EXPECT_LE(text.size(), script::max_result);
        EXPECT_GT(text.size(), script::max_result - 4);
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
