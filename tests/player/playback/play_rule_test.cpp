#include "player/playback/play_rule.h"

#include <gtest/gtest.h>

#include <vector>

namespace ostrevan::playback {
namespace {

constexpr int never = -1;

struct event {
    bool (*feed)(play_rule&, double);  // true when the track counts from here
    double value = 0;
};
constexpr auto start = [](play_rule& rule, double) { return rule.started(), false; };
constexpr auto load = [](play_rule& rule, double duration) { return rule.loaded(duration), false; };
constexpr auto at = [](play_rule& rule, double seconds) { return rule.position(seconds); };
constexpr auto seek = [](play_rule& rule, double) { return rule.seek(), false; };
constexpr auto restart = [](play_rule& rule, double) { return rule.restart(), false; };
constexpr auto finish = [](play_rule& rule, double) { return rule.ended(end_reason::finished); };
constexpr auto stop = [](play_rule& rule, double) { return rule.ended(end_reason::stopped); };
constexpr auto fail = [](play_rule& rule, double) { return rule.ended(end_reason::failed); };

struct listening {
    const char* name;
    std::vector<event> events;
    int counts_at;  // the event after which the track counts
    double listened;
};

void expect_counts(play_rule rule, const listening& expected) {
    std::vector<int> counted;
    for (std::size_t i = 0; i < expected.events.size(); ++i)
        if (expected.events[i].feed(rule, expected.events[i].value)) counted.push_back(static_cast<int>(i));
    EXPECT_EQ(counted, expected.counts_at == never ? std::vector<int>{} : std::vector{expected.counts_at}) << expected.name;
    EXPECT_DOUBLE_EQ(rule.listened(), expected.listened) << expected.name;
}

TEST(play_rule, counts_what_was_really_listened_to_and_only_once) {
    const listening table[] = {
        {"half the length", {{start}, {load, 100}, {at, 49.9}, {at, 50}, {at, 80}, {finish}}, 3, 100},
        {"left just before half", {{start}, {load, 100}, {at, 49.9}, {stop}}, never, 49.9},
        {"four minutes of a long track", {{start}, {load, 3600}, {at, 239}, {at, 240}, {stop}}, 3, 240},
        {"eight minutes: both bounds meet", {{start}, {load, 480}, {at, 239.9}, {at, 240}}, 3, 240},
        {"never sought in, no position reported", {{start}, {load, 100}, {finish}}, 2, 100},
        {"one late position in fast mode", {{start}, {load, 100}, {restart}, {at, 20}, {finish}}, 4, 100},
        {"restart without a seek loses nothing", {{start}, {load, 100}, {at, 30}, {restart}, {at, 50}}, 4, 50},
        {"jumping ahead is not listening", {{start}, {load, 100}, {at, 10}, {seek}, {restart}, {at, 90}, {stop}}, never, 10},
        {"jump, then the rest to the end", {{start}, {load, 100}, {at, 10}, {seek}, {restart}, {at, 60}, {finish}}, 6, 50},
        {"jump, too little after it", {{start}, {load, 100}, {at, 10}, {seek}, {restart}, {at, 70}, {finish}}, never, 40},
        {"positions in the jump", {{start}, {load, 100}, {at, 10}, {seek}, {at, 80}, {restart}, {at, 80}}, never, 10},
        {"jump beyond the end", {{start}, {load, 100}, {at, 40}, {seek}, {finish}}, never, 40},
        {"jump back and hear it again", {{start}, {load, 100}, {at, 30}, {seek}, {restart}, {at, 0}, {at, 20}}, 6, 50},
        {"position that moves back by itself", {{start}, {load, 100}, {at, 30}, {at, 29}, {at, 40}, {stop}}, never, 41},
        {"decoding fails early", {{start}, {load, 100}, {at, 30}, {fail}}, never, 30},
        {"decoding fails after half", {{start}, {load, 100}, {at, 60}, {fail}}, 2, 60},
        {"short track to its end", {{start}, {load, 29.9}, {at, 29}, {finish}}, 3, 29.9},
        {"short track left before its end", {{start}, {load, 29.9}, {at, 29}, {stop}}, never, 29},
        {"short track, end reached by a jump", {{start}, {load, 20}, {seek}, {restart}, {at, 18}, {finish}}, never, 2},
        {"thirty seconds are not short", {{start}, {load, 30}, {at, 15}, {stop}}, 2, 15},
        {"no length, to its end", {{start}, {load, 0}, {at, 5}, {finish}}, 3, 5},
        {"no length, four minutes", {{start}, {load, 0}, {at, 240}, {stop}}, 2, 240},
        {"no length, left early", {{start}, {load, 0}, {at, 100}, {stop}}, never, 100},
        {"a seek before", {{start}, {load, 100}, {seek}, {restart}, {at, 30}, {start}, {load, 100}, {finish}}, 7, 100},
        {"nothing counts between tracks", {{load, 10}, {at, 300}, {finish}}, never, 0},
    };
    for (const auto& row : table) expect_counts(play_rule{}, row);
}

TEST(play_rule, follows_the_thresholds_it_is_given) {
    const play_thresholds thresholds{.share = 0.9, .seconds = 60, .short_track = 5};
    expect_counts(play_rule(thresholds), {"share", {{start}, {load, 10}, {at, 8.9}, {at, 9}, {stop}}, 3, 9});
    expect_counts(play_rule(thresholds), {"seconds", {{start}, {load, 1000}, {at, 60}, {stop}}, 2, 60});
    expect_counts(play_rule(thresholds), {"short", {{start}, {load, 4}, {at, 3.9}, {stop}}, never, 3.9});
}

}  // namespace
}  // namespace ostrevan::playback
