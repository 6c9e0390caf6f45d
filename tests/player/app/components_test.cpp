#include <gtest/gtest.h>

#include "player/app/component_start.h"
#include "player/app/job_front_ends.h"
#include "player/app/play_counting.h"
#include "player/services/dialog_registry.h"
#include "player/services/dialog_service.h"
#include "player/services/player_api.h"
#include "player/services/popup_message.h"
#include "player/services/tag_edit_news.h"
#include "player/system/user_error.h"
#include "player/view/columns.h"
#include "player/view/context_menu.h"
#include "player/view/main_menu.h"
#include "player/view/properties.h"
#include "player/view/settings_tree.h"
#include "tests/player/app/doubles.h"
#include "tests/support/memory_tracks.h"

namespace ostrevan::app {
namespace {

/// How often the second of two doubles is called when the first fails.
template <typename Double, typename Work>
std::function<int(world&, fault)> guarded(Work work) {
    return [work](world& player, fault fails) {
        std::conditional_t<std::is_base_of_v<service_base, Double>, service_uncounted_t<Double>, Double> failing, sound;
        failing.fails = fails;
        player.add(failing);
        player.add(sound);
        work(player);
        return sound.calls;
    };
}

TEST(components, one_that_fails_is_named_and_the_others_are_called) {
    const auto start = [](world& w) { start_components(w.components, w.services, w.sink); };
    const auto end = [](world& w) { end_components(w.components, w.services, w.sink); };
    const metadb_handle_list none;
    const struct {
        const char* doing;
        std::function<int(world&, fault)> calls;
    } cases[] = {
        {"counting a play", guarded<collector>([](world& w) { tell_of_play(w.loop, w.services, {}, [](auto&) {}); })},
        {"following edited tags", guarded<follower>([](world& w) {
             services::tag_edit_news news(w.loop, w.services, [](auto) {});
             news.tell(std::vector<tag_edit>{});
             EXPECT_FALSE(news.all_told());
         })},
        {"its fields", guarded<named_fields>([](world& w) { register_components(w.components, w.services, w.fields); })},
        {"column 1, which is left out", guarded<columns>([](world& w) { (void)view::default_columns(w.services); })},
        {"the track properties", guarded<properties>([&](world& w) { (void)view::track_properties(w.services, none); })},
        {"its menu", guarded<commands>([](world& w) { (void)view::main_menu_of(w.components, w.services.guard()); })},
        {"an entry of the menu", guarded<items>([&](world& w) { (void)view::context_menu_for(w.services, none); })},
        {"its settings", guarded<setting>([](world& w) { (void)view::settings_tree(w.services); })},
        {"reading a setting", guarded<variable>(start)},
        {"starting", guarded<notified>(start)},
        {"starting", guarded<staged>(start)},
        {"ending", guarded<notified>(end)},
        {"saving a setting", guarded<variable>(end)},
    };
    const std::pair<fault, std::string> faults[] = {{[] { throw std::runtime_error("broken"); }, "broken"},
                                                    {[] { throw 1; }, "unknown error"}};
    for (const auto& [doing, calls] : cases)
        for (const auto& [fails, reason] : faults) {
            world player;
            EXPECT_GT(calls(player, fails), 0) << doing;
            EXPECT_EQ(player.ui.said.at(0), "Component app_tests failed at " + std::string(doing) + ": " + reason);
        }
}

TEST(components, a_play_is_what_they_made_of_it_when_all_that_they_posted_has_run) {
    using reply_t = playback_statistics_outcome::reply_t;
    world player;
    service_uncounted_t<collector> first, second;
    const std::function<void(reply_t)> counted = [](const reply_t&reply) { reply(play_outcome::counted, nullptr); },
                                       off = [](const reply_t&reply) { reply(play_outcome::left_out, "off"); },
                                       full = [&](const reply_t&reply) {
                                           player.loop.post([reply] { reply(play_outcome::failed, "full"); });
                                       };
    const auto verdict_on = [&] {
        std::string text;
        tell_of_play(player.loop, player.services, {}, [&](const play_verdict& made) {
            text = (made.is_counted ? "counted " : "") + std::string(made.has_failed ? "failed " : "") + made.reason();
        });
        player.loop.run_until_idle();
        return text;
    };
    EXPECT_EQ(verdict_on(), "no component counts plays");
    player.add(first);
    EXPECT_EQ(verdict_on(), "app_tests does not say that it counted it");
    player.add(second);
    const std::tuple<std::function<void(reply_t)>, std::function<void(reply_t)>, const char*> table[] = {
        {counted, off, "counted off"}, {off, full, "failed off; full"}, {full, counted, "counted failed full"}};
    for (const auto& [one, other, verdict] : table) {
        first.outcome.say = one;
        second.outcome.say = other;
        EXPECT_EQ(verdict_on(), verdict);
    }
}

TEST(components, settings_columns_and_properties_are_in_their_order) {
    world player;
    service_uncounted_t<setting> late("A late", 1, 9, 2), below("below b", 4, 3, 0), b("B", 3, 9, 1), a("a", 2, 9, 1);
    service_uncounted_t<columns> offered;
    offered.scripts = {{"%a%", "%b%"}, {"$nosuch()", ""}, {"%c%", "%d%"}};
    service_uncounted_t<properties> rows;
    rows.fill = [](track_property_sink& out) {
        for (const auto& [group, priority, name] : {std::tuple{"Z", 2., "b"}, {"A", 0., "c"}, {"Z", 1., "a"}})
            out.set_property(group, priority, name, "");
    };
    player.add(offered);
    player.add(rows);
    for (auto* each : {&late, &below, &b, &a}) player.add(*each);

    std::string text;
    const auto shown = view::settings_tree(player.services);
    for (const auto& entry : shown) text += std::to_string(entry.depth) + entry.setting->label() + ' ';
    EXPECT_EQ(text, "0B 1below b 0a 0A late ");
    EXPECT_EQ(&view::find_checkbox(shown, "b"), &b);
    EXPECT_EQ(&view::find_checkbox(shown, "{00000004-0000-0000-0000-000000000000}"), &below);
    EXPECT_THROW(view::find_checkbox(shown, "l"), system::user_error);
    text.clear();
    for (const auto& each : view::default_columns(player.services))
        text += each.name + each.display_script + each.sort_script + (each.align_right ? "> " : " ");
    EXPECT_EQ(text, "Artist[%artist%][%artist%] Title%title%%title% C0%a%%b%> C2%c%%d% ");
    EXPECT_EQ(view::find_column(view::all_columns(player.services), "LENGTH").sort_script, "[%length_seconds%]");
    EXPECT_NE(player.ui.said.at(0).find("column 2, which is left out"), std::string::npos);
    text.clear();
    for (const auto& section : view::track_properties(player.services, metadb_handle_list()))
        for (const auto& row : section.rows) text += section.name + row.name + ' ';
    EXPECT_EQ(text, "Za Zb Ac ");
}

TEST(components, a_field_that_leads_back_to_itself_shows_nothing_and_is_reported_once) {
    world player;
    service_uncounted_t<named_fields> provider;
    const auto show = [&](metadb_handle& track, const char* name) {
        std::string text("<");
        const bool found = titleformat::track_fields(player.fields, track).field(name, text);
        return text + (found ? "" : " not found");
    };
    std::string inner;
    provider.work = [&](metadb_handle& track) {
        inner = show(track, "f");
        throw 1;
    };
    player.fields.add(provider);
    const auto track = support::make_track("/a/b.c/.x", {{"composer", "C"}, {"composer", "D"}, {"performer", "P"}}, 59.6);
    for (int turn = 0; turn < 2; ++turn) EXPECT_EQ(show(*track, "f"), "< not found");
    EXPECT_EQ(inner, "< not found");
    EXPECT_EQ(player.ui.said, lines{"Component app_tests failed at the field %f%: the field leads back to itself"});
    for (const auto& [name, shown] : {std::pair{"length", "<1:00"},
                                      {"length_seconds", "<60"},
                                      {"artist", "<C, D"},
                                      {"title", "<.x"},
                                      {"directoryname", "<b.c"},
                                      {"codec", "< not found"}})
        EXPECT_EQ(show(*track, name), shown) << name;
}

TEST(components, a_dialog_is_the_only_one_until_it_is_closed_and_failed_answers_name_the_component) {
    struct rules : dialog_rules {
        const dialog_layout& layout() const noexcept override {
            static constexpr dialog_layout drawn{"t", "f", 8, {}};
            return drawn;
        }
        void on_open(dialog_window&) override {}
        void on_button(dialog_window&, int) override { throw 1; }
    };
    world player;
    service_uncounted_t<services::crash_log_service_impl> log("/dev/null");
    services::player_api_impl api(player.loop, player.services, log, "", true);
    service_uncounted_t<services::dialog_registry_impl> registry;
    service_uncounted_t<services::dialog_service_impl> dialogs(player.loop, player.ui, registry, api);
    dialogs.open(service_new<rules>());
    EXPECT_FALSE(registry.can_create_new());
    player.loop.post([&] { player.ui.dialog->press(3); });
    player.loop.run_until_idle();
    player.ui.dialog.reset();
    EXPECT_TRUE(registry.can_create_new());

    job_front_ends asking(player.loop, player.ui);
    service_uncounted_t<services::popup_message_impl> messages(player.loop, asking);
    query_service<popup_message_v3>(messages)->messageBoxAsync({nullptr, "sure?", "", 0, [](unsigned) { throw 1; }});
    player.loop.run_until_idle();
    EXPECT_EQ(player.ui.said, (lines{"app_tests: unknown error", "sure?", "app_tests: unknown error"}));
}

}  // namespace
}  // namespace ostrevan::app
