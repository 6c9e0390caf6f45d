#include "player/playback/queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace ostrevan::playback {
namespace {

/// The places heard by steps: f the track ends by itself, n next, p previous, ! stop after it, T L O repeat track, list,
/// off, t a s shuffle tracks, albums, off. A step without a track after it gives '-' and stays.
std::string heard(queue list, std::string_view steps) {
    std::string places(1, static_cast<char>('0' + list.place(list.current())));
    const auto move = [&](std::optional<queue::turn> to) {
        if (to) list.go_to(*to);
        places += to ? static_cast<char>('0' + list.place(*to)) : '-';
    };
    for (const char step : steps) {
        if (step == 'f') move(list.following());
        if (step == 'n') move(list.after(list.current()));
        if (step == 'p') move(list.before(list.current()));
        if (step == '!') list.set_stop_after(true);
        if (const auto at = std::string_view("OTL").find(step); at != std::string_view::npos)
            list.set_repeat(static_cast<repeat_mode>(at));
        if (const auto at = std::string_view("sta").find(step); at != std::string_view::npos)
            list.set_shuffle(static_cast<shuffle_mode>(at));
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
            const auto last = list.place(list.current());
            list.go_to(*list.before(list.current()));
            EXPECT_EQ(static_cast<char>('0' + list.place(list.current())), before.back()) << "the round before";
            list.go_to(*list.after(list.current()));
            EXPECT_EQ(list.place(list.current()), last);
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
        const queue list({"A", "B", "A", "", "B", ""}, {.shuffle = shuffle_mode::albums}, seed);
        const auto order = heard(list, "fffff");
        EXPECT_NE(order.find("02"), std::string::npos) << order;
        EXPECT_NE(order.find("14"), std::string::npos) << order;
        EXPECT_EQ(std::set<char>(order.begin(), order.end()).size(), 6U) << order;
        orders.insert(order);
        EXPECT_TRUE(heard(queue({"A", "B", "A", "", "B", ""}, {}, seed), "nnnnafffff").starts_with("01234"))
            << "the current";
    }
    EXPECT_GT(orders.size(), 10U);
    EXPECT_EQ(heard(queue({"A", "A"}, {.repeat = repeat_mode::list, .shuffle = shuffle_mode::albums}, 1), "fff"), "0101");
}

TEST(queue, brings_a_light_track_or_album_late) {
    for (const auto mode : {shuffle_mode::tracks, shuffle_mode::albums}) {
        std::size_t late = 0, middle = 0;
        for (std::uint64_t seed = 0; seed < 300; ++seed) {
            const auto round = queue({"A", "B", "C", "D"}, {.shuffle = mode}, seed, {1, 0.01, 1, 1}).round();
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
    EXPECT_EQ(list.round().front(), list.place(list.current()));
}

}  // namespace
}  // namespace ostrevan::playback
