#include "player/watch/listener.h"

#include <gtest/gtest.h>

#include <string>

namespace ostrevan::watch {
namespace {

/// Plays the part of a player and of the clock, and writes down what counts.
struct stage {
    std::string counted, shown;
    double time = 1000, position = 0, rate = 1, known = 0;
    listener ear{
        {.on_playing = [this](const told_track& track, bool is_new) { shown += track.title + (is_new ? " " : "* "); },
         .on_counted = [this](const told_track& track, double,
                              double) { counted += track.title + "@" + std::to_string(int(time) - 1000) + " "; },
         .on_skipped = [this](const told_track& track, double heard,
                              double) { counted += track.title + "-" + std::to_string(int(heard)) + " "; },
         .true_length = [this](const told_track&) { return known; }}};

    stage& tell(const news& what) { return ear.hear(time, what), *this; }
    stage& track(std::string title, double length, const std::string& id = "", const char* protocol = "/") {
        const std::string location = protocol == std::string("/") ? "/" + title : protocol;
        return tell(has_track{{.id = id, .location = location, .title = std::move(title), .length = length}});
    }
    stage& state(play_state now) { return tell(has_state{now}); }
    stage& playing() { return state(play_state::playing); }
    stage& stopped() { return state(play_state::stopped); }
    stage& wait(double seconds) { return time += seconds, *this; }
    stage& at(double seconds) { return position = seconds, tell(is_at{seconds}); }
    stage& jump(double seconds) { return position = seconds, tell(has_jumped{seconds}); }
    /// Asks for the position once a second, after a jump that is not told.
    stage& play(int seconds, double from) { return position = from, play(seconds); }
    stage& play(int seconds) {
        for (int i = 0; i < seconds; ++i) wait(1).at(position + rate);
        return *this;
    }
    stage& silent(int seconds, std::optional<double> said) {
        for (int i = 0; i < seconds; ++i) wait(1).tell(is_at{said});
        return *this;
    }
};

struct scene {
    const char* name;
    void (*act)(stage&);
    const char* counted;
};

constexpr auto page = "https://example.org/page";

TEST(listener, counts_each_time_a_track_is_heard_once) {
    const scene table[] = {
        {"half of the track", [](stage& s) { s.track("a", 100).playing().play(100); }, "a@50 "},
        {"left before half", [](stage& s) { s.track("a", 100).playing().play(45).track("b", 100).play(1, 0); }, "a-45 "},
        {"left when it had hardly begun", [](stage& s) { s.track("a", 100).playing().play(4).track("b", 100); }, ""},
        {"left when it was stopped",
         [](stage& s) { s.track("a", 100).playing().play(40).stopped().track("b", 100).playing(); }, ""},
        {"track told after the state", [](stage& s) { s.playing().track("a", 100).play(60); }, "a@50 "},
        {"repeat, shown by the position alone", [](stage& s) { s.track("a", 100).playing().play(100).play(100, 0); },
         "a@50 a@150 "},
        {"repeat of a short track", [](stage& s) { s.track("a", 20).playing().play(20).play(20, 0).play(1, 0); },
         "a@21 a@41 "},
        {"repeat seen late", [](stage& s) { s.track("a", 60).playing().play(59).wait(6).play(60, 4); }, "a@30 a@91 "},
        {"repeat shown by a seek", [](stage& s) { s.track("a", 100).playing().play(99).wait(1).jump(0).play(99); },
         "a@50 a@150 "},
        {"the same file twice in the list, left early",
         [](stage& s) { s.track("a", 100, "1").playing().play(60).track("a", 100, "2").play(60, 0); }, "a@50 a@110 "},
        {"back to the beginning in the middle", [](stage& s) { s.track("a", 100).playing().play(60).jump(0).play(60); },
         "a@50 "},
        {"the same, not told", [](stage& s) { s.track("a", 100).playing().play(60).play(60, 0); }, "a@50 "},
        {"a jump ahead", [](stage& s) { s.track("a", 100).playing().play(10).jump(70).play(30); }, ""},
        {"a jump ahead, not told", [](stage& s) { s.track("a", 100).playing().play(10).play(30, 70); }, ""},
        {"a seek to where it is anyway",
         [](stage& s) { s.track("a", 20).playing().jump(0).play(10).jump(10.5).play(9).stopped(); }, "a@19 "},
        {"paused before half",
         [](stage& s) {
             s.track("a", 100).playing().play(40).state(play_state::paused).wait(600).at(40).playing().play(60);
         },
         "a@650 "},
        {"paused after half",
         [](stage& s) { s.track("a", 100).playing().play(90).state(play_state::paused).wait(600).playing().play(10); },
         "a@50 "},
        {"stopped and gone on", [](stage& s) { s.track("a", 999).playing().play(250).stopped().playing().play(250); },
         "a@240 "},
        {"stopped and begun again", [](stage& s) { s.track("a", 100).playing().play(60).stopped().playing().play(60, 0); },
         "a@50 a@110 "},
        {"stopped a little early at the end", [](stage& s) { s.track("a", 6).playing().play(4).wait(0.5).stopped(); },
         "a@4 "},
        {"the player goes at the end", [](stage& s) { s.track("a", 20).playing().play(19).tell(has_gone{}); }, "a@19 "},
        {"the player goes before", [](stage& s) { s.track("a", 20).playing().play(15).tell(has_gone{}); }, ""},
        {"the bus goes and comes back",
         [](stage& s) {
             s.track("a", 999).playing().play(250).tell(is_out_of_reach{}).wait(9).track("a", 999).playing().play(250, 259);
         },
         "a@240 "},
        {"every second the same is told",
         [](stage& s) {
             s.track("a", 100).playing();
             for (int i = 0; i < 100; ++i) s.play(1).track("a", 100).playing();
         },
         "a@50 "},
        {"the length comes late", [](stage& s) { s.track("a", 0).playing().play(60).track("a", 200).play(140); }, "a@100 "},
        {"the first length is nonsense", [](stage& s) { s.track("a", 2).playing().play(1).track("a", 200).play(199); },
         "a@100 "},
        {"a broadcast has no length", [](stage& s) { s.track("a", 9e12).playing().play(300); }, "a@240 "},
        {"the library knows the length better",
         [](stage& s) {
             s.known = 200;
             s.track("a", 30).playing().play(62).track("a", 31).play(138);
         },
         "a@100 "},
        {"twice the speed", [](stage& s) { s.rate = 2, s.tell(has_rate{2}).track("a", 100).playing().play(50); }, "a@25 "},
        {"half the speed", [](stage& s) { s.rate = 0.5, s.tell(has_rate{0.5}).track("a", 100).playing().play(150); },
         "a@100 "},
        {"a speed of nothing", [](stage& s) { s.tell(has_rate{0}).track("a", 100).playing().play(100); }, "a@50 "},
        {"the position is never told", [](stage& s) { s.track("a", 100).playing().silent(60, {}); }, "a@50 "},
        {"the position is always 0", [](stage& s) { s.track("a", 100).playing().silent(60, 0); }, "a@50 "},
        {"without a position, a pause",
         [](stage& s) {
             s.track("a", 100).playing().silent(40, 0).state(play_state::paused).wait(99).playing().silent(20, 0);
         },
         "a@149 "},
        {"slow to begin", [](stage& s) { s.track("a", 100).playing().silent(8, 0).play(100); }, "a@58 "},
        {"the machine sleeps, and the player counts on",
         [](stage& s) { s.track("a", 999).playing().play(99).play(150, 800); }, "a@241 "},
        {"heard from the middle on", [](stage& s) { s.track("a", 100).playing().play(40, 60); }, ""},
        {"the position of the track before",
         [](stage& s) {
             s.track("a", 100).playing().play(100).track("b", 40).at(100).wait(1).at(101).play(40, 0).stopped();
         },
         "a@50 b@121 "},
        {"a page that changes its title",
         [](stage& s) { s.track("a", 100, "", page).playing().play(30).track("(1) a", 100, "", page).play(60); },
         "(1) a@50 "},
        {"a page that goes to the next title",
         [](stage& s) { s.track("a", 20, "", page).playing().play(20).track("b", 20, "", page).play(20, 0).stopped(); },
         "a@21 b@40 "},
        {"no address: an old position after the next track was told",
         [](stage& s) { s.track("a", 100, "1", "").playing().play(40).track("b", 100, "2", "").at(40).play(15, 0); },
         "a-40 "},
        {"the same file twice, and an old position",
         [](stage& s) { s.track("a", 100, "1").playing().play(60).track("a", 100, "2").at(60).play(60, 0); }, "a@50 a@110 "},
        {"neither address nor position",
         [](stage& s) { s.track("a", 100, "", "").playing().silent(100, {}).track("b", 100, "", "").silent(60, {}); },
         "a@50 b@150 "},
        {"one position is nonsense",
         [](stage& s) { s.track("a", 100).playing().play(60).at(9.2e12).wait(1).at(62).play(5); }, "a@50 "},
        {"longer than told, and back", [](stage& s) { s.track("a", 60).playing().play(150).play(20, 80); }, "a@30 "},
        {"the player hangs", [](stage& s) { s.track("a", 100).playing().play(30).silent(90, {}).tell(has_gone{}); }, ""},
        {"a broadcast that goes to the next title",
         [](stage& s) { s.track("a", 0, "", page).playing().play(200).track("b", 0, "", page).play(300); }, "b@442 "},
    };
    for (const auto& row : table) {
        stage now;
        row.act(now);
        EXPECT_EQ(now.counted, row.counted) << row.name;
    }
}

TEST(listener, shows_a_track_once_it_is_heard_and_what_is_told_later) {
    stage now;
    now.track("skipped", 100).playing().wait(0.5).track("a", 100).play(3).track("a", 100);
    now.tell(has_track{{.location = "/a", .title = "A", .length = 100}}).play(97).play(3, 0);
    EXPECT_EQ(now.shown, "a A* A ");
}

}  // namespace
}  // namespace ostrevan::watch
