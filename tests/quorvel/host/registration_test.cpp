#include <algorithm>

#include "ostrevan/advanced_settings.h"
#include "ostrevan/component_version.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/library_columns.h"
#include "tests/support/statistics_test.h"

namespace {

using registration = support::statistics_test;

/// Players store shortcuts, layouts and settings under these identifiers.
TEST_F(registration, keeps_the_identifiers_that_players_have_stored) {
    std::vector<std::string> lines;
    ostrevan::for_each_service<ostrevan::context_menu_item>([&](auto& group) {
        for (std::size_t i = 0; i < group.get_item_count(); ++i)
            lines.push_back(nuv::guid_text(group.get_parent()) + ' ' + nuv::guid_text(group.get_item_guid(i)) + ' ' +
                            group.get_item_default_path(i) + '/' + group.get_item_name(i));
    });
    ostrevan::for_each_service<ostrevan::advanced_setting>([&](auto& entry) {
        lines.push_back(nuv::guid_text(entry.parent()) + ' ' + nuv::guid_text(entry.id()) + ' ' + entry.label());
    });
    auto& columns = player.component_service<ostrevan::library_column_provider>();
    for (std::size_t i = 0; i < columns.get_column_count(); ++i)
        lines.push_back(nuv::guid_text(columns.get_column_id(i)) + ' ' + columns.get_column_name(i) + ' ' +
                        columns.get_display_script(i) + ' ' + columns.get_sort_script(i) + ' ' +
                        std::to_string(columns.get_column_flags(i)));
    std::ranges::sort(lines);
    const std::vector<std::string> expected = {
        "2F8D7512-1810-41BE-9F86-B80643B28A19 0B797ADD-4FD1-479F-8A37-E8B3491FD630 Playback Statistics/Copy statistics",
        "2F8D7512-1810-41BE-9F86-B80643B28A19 0D6BCB34-1660-4862-912B-A8CA3BC735F2 Playback Statistics/Reset statistics",
        "2F8D7512-1810-41BE-9F86-B80643B28A19 7E4DC828-6D2C-487A-8B85-3F3EE4F54768 Playback Statistics/Paste statistics",
        "35365484-CC58-4926-97E1-5E63F3ABB9E2 502BC959-89A0-4DC2-B73A-E7A54DDB2075 Playback Statistics",
        "3BAEAC90-3F85-4DC0-AE77-9C2158C2330A First Played %first_played% %first_played% 4",
        "42820296-C3B6-4B24-9229-4B78938B2258 15D9655C-F6DE-4B98-8942-A9DAE2F9AD75 Playback Statistics/Rating",
        "502BC959-89A0-4DC2-B73A-E7A54DDB2075 BE5DDEBA-0A25-4AAB-B60F-B597991C582C Automatically synchronize file tags "
        "with statistics (causes file tag rewrites during playback, disrecommended)",
        "9733E7C8-430B-4317-B2AA-7275F223D34B 036E5B94-63B6-4282-BDF7-09BA8B543FFC Playback Statistics/"
        "Write statistics to file tags",
        "9733E7C8-430B-4317-B2AA-7275F223D34B 2A53B4AF-858A-4EEE-95D9-06A74A444F8F Playback Statistics/"
        "Import statistics from file tags",
        "9733E7C8-430B-4317-B2AA-7275F223D34B B19A8824-41E3-48E6-A054-6A97A3B29899 Playback Statistics/"
        "Export statistics to XML...",
        "9F99DA29-85AA-42A7-9072-7AE828B976EA Last Played %last_played% %last_played% 4",
        "A07A0249-0D0F-4EBF-9575-59BD44C14907 Play Count %play_count% %play_count% 4",
        "BAF96414-7279-4471-8ADD-FD6CAFECC9CB Date Added %added% %added% 4",
        "BCA594F2-7566-4D29-B465-2A8A94F87E51 Rating %rating_stars_fixed% %rating% 0",
    };
    EXPECT_EQ(lines, expected);
    EXPECT_DEATH((void)columns.get_column_id(5), "Bug check");
    EXPECT_EQ(columns.get_column_flags(5), 4U) << "flags are answered for any index";
}

TEST_F(registration, checkbox_is_the_stored_setting) {
    std::size_t boxes = 0;
    ostrevan::for_each_service<ostrevan::advanced_setting>([&](auto& entry) {
        if (entry.service_query(ostrevan::advanced_checkbox::checkbox_guid) == nullptr) return;
        ++boxes;
        auto& box = static_cast<ostrevan::advanced_checkbox&>(entry);
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
        {"/usr/lib/quorvel.dll", {}},
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
