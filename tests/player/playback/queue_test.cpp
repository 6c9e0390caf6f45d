#include "player/playback/queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>

namespace ostrevan::playback {
namespace {

/// The entries heard by steps: f the track ends by itself, n next, p previous, ! stop after it, T L O repeat track, list,
/// off, t a s shuffle tracks, albums, off, + adds two tracks, * two next, -1 removes entry 1, >12 moves entry 1 to position
/// 2, = the current one; x for a playback that a removal has ended, and E for an empty list. A step without a track after it
/// gives '-' and stays.
std::string heard(queue list, std::string_view steps) {
    std::string places(1, static_cast<char>('0' + list.current_entry()));
    const auto move = [&](std::optional<queue::turn> to) {
        if (to) list.go_to(*to);
        places += to ? static_cast<char>('0' + list.entry_of(*to)) : '-';
    };
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const char step = steps[i];
        const auto number = [&] { return static_cast<queue::entry>(steps[++i] - '0'); };
        if (step == 'f') move(list.following());
        if (step == 'n') move(list.after(list.current()));
        if (step == 'p') move(list.before(list.current()));
        if (step == '!') list.set_stop_after(true);
        if (const auto at = std::string_view("OTL").find(step); at != std::string_view::npos)
            list.set_repeat(static_cast<repeat_mode>(at));
        if (const auto at = std::string_view("sta").find(step); at != std::string_view::npos)
            list.set_shuffle(static_cast<shuffle_mode>(at));
        const std::vector<shuffle_traits> two(2);
        if (step == '+' || step == '*') list.add(two, step == '*');
        if (step == '-' && !list.remove(std::array{number()})) places += 'x';
        if (list.size() == 0) return places + 'E';
        if (step == '=') places += static_cast<char>('0' + list.current_entry());
        if (const auto which = step == '>' ? number() : 0; step == '>') list.move(which, number());
    }
    return places;
}

TEST(queue, plays_in_the_order_of_its_modes) {
    struct row {
        const char* steps;
        const char* places;
    };
    for (const auto& [steps, places] : std::initializer_list<row>{{"ffff", "012--"},
                                                                  {"nnpp", "01210"},
                                                                  {"p", "0-"},
                                                                  {"LffffLfff", "01201201"},
                                                                  {"Lpp", "021"},
                                                                  {"LfffpO", "01202"},
                                                                  {"TffnfOf", "000112"},
                                                                  {"nnTn", "012-"},
                                                                  {"n!fnf", "01-2-"},
                                                                  {"nts", "01"},
                                                                  {"ntsff", "012-"},
                                                                  {"nLpppp", "010210"}})
        EXPECT_EQ(heard(queue(3), steps), places) << steps;
    EXPECT_EQ(heard(queue(1), "Lfffnp"), "000000");
}

TEST(queue, goes_on_with_the_right_track_after_an_edit) {
    struct row {
        const char* steps;
        const char* entries;
    };
    for (const auto& [steps, entries] : std::initializer_list<row>{{"+fffff", "01234-"},
                                                                   {"n*ffff", "01342-"},
                                                                   {"**fffff", "056341"},
                                                                   {"-1ff", "02-"},
                                                                   {"n-0fpp", "0121-"},
                                                                   {"n-1=f", "012-"},
                                                                   {"nn-2=", "012x0"},
                                                                   {"Lnn-2=ff", "012010"},
                                                                   {"-0-1-2", "0xE"},
                                                                   {">02fp", "0-2"},
                                                                   {"n>21fp", "01-2"},
                                                                   {">20tsf", "01"},
                                                                   {"Lfff+pffff", "012040123"},
                                                                   {"T-0=f", "011"}})
        EXPECT_EQ(heard(queue(3), steps), entries) << steps;
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        queue list(8, {.repeat = repeat_mode::list, .shuffle = shuffle_mode::tracks}, seed);
        const auto before = list.round();
        const auto now = list.current() + 3;
        list.go_to(now);
        list.add(std::vector<shuffle_traits>(3), false);
        EXPECT_TRUE(list.remove(std::array{before[1], before[5]}));
        list.move(before[7], 4);
        auto round = list.round();
        EXPECT_EQ(std::vector(round.begin(), round.begin() + 5),
                  (std::vector{before[0], before[2], before[3], before[4], before[7]}));
        EXPECT_EQ(list.current(), now);
        EXPECT_EQ(list.current_entry(), before[3]);
        EXPECT_TRUE(std::ranges::is_sorted(list.list())) << "the list itself is in order";
        EXPECT_FALSE(list.place_of(before[1]));
        for (int i = 0; i < 7; ++i) list.go_to(*list.following());
        auto next = list.round();
        EXPECT_NE(next, round);
        std::ranges::sort(round);
        std::ranges::sort(next);
        EXPECT_EQ(round, list.list());
        EXPECT_EQ(next, list.list());
    }
}

TEST(queue, hears_everything_before_anything_comes_again_and_in_another_order_each_round) {
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        for (const std::size_t count : {2U, 3U, 8U}) {
            queue list(count, {.repeat = repeat_mode::list, .shuffle = shuffle_mode::tracks}, seed);
            std::string before;
            for (int round = 0; round < 6; ++round) {
                const auto now = heard(list, std::string(count - 1, 'f'));
                EXPECT_EQ(std::set<char>(now.begin(), now.end()).size(), count) << now;
                EXPECT_NE(now, before);
                EXPECT_TRUE(round == 0 || count == 2 || now.front() != before.back()) << before << now;
                before = now;
                for (std::size_t i = 0; i < count; ++i) list.go_to(*list.following());
            }
            const auto last = list.current_entry();
            list.go_to(*list.before(list.current()));
            EXPECT_EQ(static_cast<char>('0' + list.current_entry()), before.back()) << "the round before";
            list.go_to(*list.after(list.current()));
            EXPECT_EQ(list.current_entry(), last);
        }
    }
    EXPECT_NE(queue(20, {.shuffle = shuffle_mode::tracks}, 1).round(),
              queue(20, {.shuffle = shuffle_mode::tracks}, 2).round());
}

TEST(queue, shuffles_from_the_current_track_on) {
    const auto rest = [](std::string places) { return std::ranges::sort(places.begin() + 4, places.end()), places; };
    for (std::uint64_t seed = 0; seed < 20; ++seed)
        EXPECT_EQ(rest(heard(queue(9, {}, seed), "nnntffffffff")),
                  "0123"
                  "01245678");
}

TEST(queue, keeps_albums_together_and_in_order) {
    std::set<std::string> orders;
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        const queue list({{"A"}, {"B"}, {"A"}, {""}, {"B"}, {""}}, {.shuffle = shuffle_mode::albums}, seed);
        const auto order = heard(list, "fffff");
        EXPECT_NE(order.find("02"), std::string::npos) << order;
        EXPECT_NE(order.find("14"), std::string::npos) << order;
        EXPECT_EQ(std::set<char>(order.begin(), order.end()).size(), 6U) << order;
        orders.insert(order);
        EXPECT_TRUE(heard(queue({{"A"}, {"B"}, {"A"}, {""}, {"B"}, {""}}, {}, seed), "nnnnafffff").starts_with("01234"))
            << "the current";
    }
    EXPECT_GT(orders.size(), 10U);
    EXPECT_EQ(heard(queue({{"A"}, {"A"}}, {.repeat = repeat_mode::list, .shuffle = shuffle_mode::albums}, 1), "fff"),
              "0101");
}

TEST(queue, brings_a_light_track_or_album_late) {
    for (const auto mode : {shuffle_mode::tracks, shuffle_mode::albums}) {
        std::size_t late = 0, middle = 0;
        for (std::uint64_t seed = 0; seed < 300; ++seed) {
            const auto round = queue({{"A"}, {"B", 0.01}, {"C"}, {"D"}}, {.shuffle = mode}, seed).round();
            late += round.back() == 1 ? 1 : 0;
            middle += round[1] == 2 ? 1 : 0;
        }
        EXPECT_GT(late, 270U);
        EXPECT_NEAR(static_cast<double>(middle), 100, 30) << "the others are equally likely";
    }
}

TEST(queue, goes_on_with_the_order_it_had) {
    queue list(4, {.shuffle = shuffle_mode::tracks}, 7);
    EXPECT_FALSE(list.resume({0, 1, 2}, 0));
    EXPECT_FALSE(list.resume({0, 1, 2, 2}, 0));
    EXPECT_FALSE(list.resume({0, 1, 2, 3}, 4));
    ASSERT_TRUE(list.resume({3, 1, 0, 2}, 1));
    EXPECT_EQ(heard(list, "ffpp"), "10201");
    EXPECT_EQ(list.round(), (std::vector<std::uint32_t>{3, 1, 0, 2}));
    list.go_to(*list.after(*list.after(list.current())));
    list.begin_again();
    EXPECT_NE(list.round(), (std::vector<std::uint32_t>{3, 1, 0, 2}));
    EXPECT_EQ(list.round().front(), list.current_entry());
}

}  // namespace
}  // namespace ostrevan::playback
