#include <algorithm>
#include <cstdio>

#include "ostrevan/advanced_settings.h"
#include "ostrevan/component.h"
#include "ostrevan/component_version.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/library_columns.h"
#include "ostrevan/main_menu.h"
#include "tests/support/statistics_test.h"

extern "C" ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player);

namespace {

using registration = support::statistics_test;

std::string text_of(const nuv::guid& id) { return nuv::guid_text(id) + ' '; }

/// Players store shortcuts, layouts and settings under these identifiers, and ask by these positions.
TEST_F(registration, keeps_what_players_have_stored) {
    std::vector<std::string> groups;
    std::string description;
    ostrevan::for_each_service<ostrevan::context_menu_item>([&](auto& group) {
        auto& lines = groups.emplace_back(text_of(group.get_parent()));
        for (std::size_t i = 0; i < group.get_item_count(); ++i) {
            lines += '\n' + text_of(group.get_item_guid(i)) + group.get_item_default_path(i) + '/' + group.get_item_name(i);
        }
        EXPECT_FALSE(group.get_item_description(group.get_item_count(), description));
        EXPECT_DEATH((void)group.get_item_name(group.get_item_count()), "Bug check");
        EXPECT_DEATH(group.context_command(3, ostrevan::metadb_handle_list{}, {}), "Bug check");
    });
    ostrevan::for_each_service<ostrevan::advanced_setting>(
        [&](auto& entry) { groups.push_back(text_of(entry.parent()) + text_of(entry.id()) + entry.label()); });
    for (std::size_t i = 0; i < player.component().config_variable_count(); ++i)
        groups.push_back(text_of(player.component().config_variable_at(i).id()));
    std::ranges::sort(groups);
    EXPECT_EQ(groups, (std::vector<std::string>{
                          "2F8D7512-1810-41BE-9F86-B80643B28A19 \n"
                          "0D6BCB34-1660-4862-912B-A8CA3BC735F2 Playback Statistics/Reset statistics\n"
                          "0B797ADD-4FD1-479F-8A37-E8B3491FD630 Playback Statistics/Copy statistics\n"
                          "7E4DC828-6D2C-487A-8B85-3F3EE4F54768 Playback Statistics/Paste statistics",
                          "35365484-CC58-4926-97E1-5E63F3ABB9E2 502BC959-89A0-4DC2-B73A-E7A54DDB2075 Playback Statistics",
                          "42820296-C3B6-4B24-9229-4B78938B2258 \n"
                          "15D9655C-F6DE-4B98-8942-A9DAE2F9AD75 Playback Statistics/Rating",
                          "502BC959-89A0-4DC2-B73A-E7A54DDB2075 BE5DDEBA-0A25-4AAB-B60F-B597991C582C Automatically "
                          "synchronize file tags with statistics (causes file tag rewrites during playback, disrecommended)",
                          "9035A43F-E915-4EEC-8DF9-7920D4D2FF19 ",
                          "9733E7C8-430B-4317-B2AA-7275F223D34B \n"
                          "036E5B94-63B6-4282-BDF7-09BA8B543FFC Playback Statistics/Write statistics to file tags\n"
                          "2A53B4AF-858A-4EEE-95D9-06A74A444F8F Playback Statistics/Import statistics from file tags\n"
                          "B19A8824-41E3-48E6-A054-6A97A3B29899 Playback Statistics/Export statistics to XML...",
                          "BE5DDEBA-0A25-4AAB-B60F-B597991C582C ",
                      }));
    EXPECT_TRUE(find_command("Reset statistics").first->get_item_description(0, description));
    EXPECT_EQ(description, "Resets playback statistics for one or more the selected items.") << "known by this wording";

    auto& menu = player.component_service<ostrevan::main_menu_commands>();
    std::string lines = text_of(menu.get_parent());
    for (std::size_t i = 0; i < menu.get_command_count(); ++i) {
        EXPECT_TRUE(menu.get_description(i, description));
        lines += '\n' + text_of(menu.get_command(i)) + menu.get_name(i) + ": " + description;
    }
    EXPECT_EQ(
        lines,
        "A2260154-F88C-4FE3-8872-AABA85A63C1E \n"
        "143BCCD5-28BE-47A6-BEE0-DFF823907BB0 Show recently played: Shows tracks from your Media Library played during "
        "last week.\n"
        "F64C27E0-C5B8-4675-B62C-EF1A79CA147E Show recently added: Shows tracks recently added to your Media Library.\n"
        "764E7F3A-7643-4126-9FA2-2C3AC3671589 Monitor playing tracks: Toggles monitoring of currently played tracks and "
        "updates of first played, last played and played count values.\n"
        "F1BB49EF-68F3-4BFD-BC16-120046E27A6E Export statistics...: Exports playback statistics into an XML file.\n"
        "5622641A-1C18-450C-8E2F-48863AA0307F Import statistics...: Imports playback statistics from an XML file.");
    EXPECT_DEATH((void)menu.get_command(5), "Bug check");
    EXPECT_DEATH(menu.execute(5), "Bug check");

    lines.clear();
    auto& columns = player.component_service<ostrevan::library_column_provider>();
    for (std::size_t i = 0; i < columns.get_column_count(); ++i)
        lines += text_of(columns.get_column_id(i)) + columns.get_column_name(i) + ' ' + columns.get_display_script(i) + ' ' +
                 columns.get_sort_script(i) + ' ' + std::to_string(columns.get_column_flags(i)) + '\n';
    EXPECT_EQ(lines,
              "A07A0249-0D0F-4EBF-9575-59BD44C14907 Play Count %play_count% %play_count% 4\n"
              "3BAEAC90-3F85-4DC0-AE77-9C2158C2330A First Played %first_played% %first_played% 4\n"
              "9F99DA29-85AA-42A7-9072-7AE828B976EA Last Played %last_played% %last_played% 4\n"
              "BAF96414-7279-4471-8ADD-FD6CAFECC9CB Date Added %added% %added% 4\n"
              "BCA594F2-7566-4D29-B465-2A8A94F87E51 Rating %rating_stars_fixed% %rating% 0\n");
    EXPECT_DEATH((void)columns.get_column_id(5), "Bug check");
    EXPECT_EQ(columns.get_column_flags(5), 4U) << "of any index";

    lines.clear();
    auto& fields = player.component_service<ostrevan::field_provider>();
    for (std::size_t i = 0; i < fields.get_field_count(); ++i) lines += fields.get_field_name(i) + std::string(" ");
    EXPECT_EQ(lines, "first_played last_played play_count played_per_day added rating rating_stars rating_stars_fixed ");
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
