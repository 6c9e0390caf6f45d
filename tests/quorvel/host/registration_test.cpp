#include <algorithm>
#include <cstdio>

#include "ostrevan/advanced_settings.h"
#include "ostrevan/component.h"
#include "ostrevan/component_version.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/library_columns.h"
#include "ostrevan/main_menu.h"
#include "tests/quorvel/golden.h"
#include "tests/support/statistics_test.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

namespace {

using registration = support::statistics_test;

/// Players store shortcuts, layouts and settings by these identifiers and positions.
TEST_F(registration, keeps_what_players_have_stored) {
    std::string description;
    std::vector<std::string> groups;  // in any order
    ostrevan::for_each_service<ostrevan::context_menu_item>([&](auto& group) {
        auto& lines = groups.emplace_back("context menu in " + nuv::guid_text(group.get_parent()) + '\n');
        for (std::size_t i = 0; i < group.get_item_count(); ++i)
            lines += "  " + nuv::guid_text(group.get_item_guid(i)) + ' ' + group.get_item_default_path(i) + '/' +
                     group.get_item_name(i) + '\n';
        EXPECT_FALSE(group.get_item_description(group.get_item_count(), description));
        EXPECT_DEATH((void)group.get_item_name(group.get_item_count()), "Bug check");
        EXPECT_DEATH(group.context_command(3, ostrevan::metadb_handle_list{}, {}), "Bug check");
    });
    ostrevan::for_each_service<ostrevan::advanced_setting>([&](auto& entry) {
        groups.push_back("setting in " + nuv::guid_text(entry.parent()) + "\n  " + nuv::guid_text(entry.id()) + ' ' +
                         entry.label() + '\n');
    });
    for (std::size_t i = 0; i < player.component().config_variable_count(); ++i)
        groups.push_back("variable\n  " + nuv::guid_text(player.component().config_variable_at(i).id()) + '\n');
    std::ranges::sort(groups);
    std::string all;
    for (const auto& group : groups) all += group;

    auto& menu = player.component_service<ostrevan::main_menu_commands>();
    all += "main menu in " + nuv::guid_text(menu.get_parent()) + '\n';
    for (std::size_t i = 0; i < menu.get_command_count(); ++i) {
        EXPECT_TRUE(menu.get_description(i, description));
        all += "  " + nuv::guid_text(menu.get_command(i)) + ' ' + menu.get_name(i) + ": " + description + '\n';
    }
    auto& columns = player.component_service<ostrevan::library_column_provider>();
    all += "columns\n";
    for (std::size_t i = 0; i < columns.get_column_count(); ++i)
        all += "  " + nuv::guid_text(columns.get_column_id(i)) + ' ' + columns.get_column_name(i) + ' ' +
               columns.get_display_script(i) + ' ' + columns.get_sort_script(i) + ' ' +
               std::to_string(columns.get_column_flags(i)) + '\n';
    auto& fields = player.component_service<ostrevan::field_provider>();
    all += "fields\n";
    for (std::size_t i = 0; i < fields.get_field_count(); ++i) all += std::string("  ") + fields.get_field_name(i) + '\n';
    EXPECT_EQ(all, golden("identifiers.txt"));

    EXPECT_TRUE(find_command("Reset statistics").first->get_item_description(0, description));
    EXPECT_EQ(description, "Resets playback statistics for one or more the selected items.") << "known by this wording";
    EXPECT_EQ(columns.get_column_flags(5), 4U) << "of any index";
    EXPECT_DEATH((void)menu.get_command(5), "Bug check");
    EXPECT_DEATH(menu.execute(5), "Bug check");
    EXPECT_DEATH((void)columns.get_column_id(5), "Bug check");
    EXPECT_DEATH((void)fields.get_field_name(8), "Bug check");
}

TEST_F(registration, checkbox_is_the_stored_setting) {
    std::size_t boxes = 0;
    ostrevan::for_each_service<ostrevan::advanced_setting>([&](auto& entry) {
        const auto found = ostrevan::query_service<ostrevan::advanced_checkbox>(entry);
        if (!found) return;
        ++boxes;
        auto& box = *found;
        EXPECT_FALSE(box.default_state());
        for (const bool state : {true, false}) {
            box.set_state(state);
            EXPECT_EQ(box.get_state(), state);
            EXPECT_EQ(quorvel::tag_sync_enabled.get(), state);
            EXPECT_EQ(player.configuration.values.at(box.id()), state);
        }
    });
    EXPECT_EQ(boxes, 1U);
}

#ifdef __unix__  // elsewhere the system is asked, and the library itself is renamed
TEST_F(registration, notices_that_its_library_was_renamed) {
    auto& version = player.component_service<ostrevan::component_version>();
    const std::pair<const char*, std::vector<std::string>> rows[] = {
        {"C:\\components\\quorvel.dll", {}},
        {"/usr/lib/Quorvel.dll", {"Component rename detected: quorvel.dll >> Quorvel.dll"}},
        {"/quorvel.dll/stats.so", {"Component rename detected: quorvel.dll >> stats.so"}},
    };
    for (const auto& [path, lines] : rows) {
        player.crash_log.lines.clear();
        player.component().set_library_path(path);
        EXPECT_EQ(version.test_installation(), lines.empty()) << path;
        EXPECT_EQ(player.crash_log.lines, lines);
    }
}
#endif

}  // namespace

TEST(entry, refuses_a_player_of_another_kind_version_or_build) {
    support::memory_player player;
    const ostrevan::player_interface wrong_magic{.magic = ostrevan::component_magic, .api = &player};
    for (const auto* block : {static_cast<const ostrevan::player_interface*>(nullptr), &wrong_magic})
        EXPECT_EQ(ostrevan_get_interface(block), nullptr);

    const ostrevan::player_interface newer{.version = ostrevan::interface_version + 1, .api = &player};
    ostrevan::player_interface other_build{.api = &player};
    other_build.build.properties[5].value[0] = '?';
    for (const auto* block : {&newer, &std::as_const(other_build)}) {
        const auto* const refusal = ostrevan_get_interface(block);
        EXPECT_EQ(refusal->version, ostrevan::interface_version);
        EXPECT_EQ(refusal->api, nullptr);
    }
}

#ifdef QUORVEL_MODULE_PATH
TEST(entry, module_exports_its_entry_and_nothing_else) {
    FILE* pipe = popen("nm -D --defined-only " QUORVEL_MODULE_PATH, "r");
    ASSERT_NE(pipe, nullptr);
    std::string listing(10'000, ' ');
    listing.resize(std::fread(listing.data(), 1, listing.size(), pipe));
    ASSERT_EQ(pclose(pipe), 0);
    EXPECT_NE(listing.find(" T ostrevan_get_interface\n"), std::string::npos) << listing;
    EXPECT_EQ(listing.find('\n'), listing.size() - 1) << "more than one symbol:\n" << listing;
}
#endif
