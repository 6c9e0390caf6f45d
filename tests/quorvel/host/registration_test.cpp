#include <algorithm>

#include "ostrevan/advanced_settings.h"
#include "ostrevan/component_version.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/library_columns.h"
#include "tests/support/statistics_test.h"

/// What players have stored about the component must go on meaning the same.
namespace {

class registration : public support::statistics_test {
protected:
    template <typename T, typename Visitor>
    void each(Visitor&& visit) {
        for (std::size_t i = 0; i < player.component().service_count(); ++i) {
            const auto entry = player.component().service_at(i);
            if (entry.service_class == T::class_guid) visit(static_cast<T&>(*entry.service));
        }
    }
    static void expect_lines(std::vector<std::string> lines, std::vector<std::string> expected) {
        std::ranges::sort(lines);
        std::ranges::sort(expected);
        EXPECT_EQ(lines, expected);
    }
};

TEST_F(registration, keeps_the_identifiers_of_context_commands) {
    std::vector<std::string> lines;
    each<ostrevan::context_menu_item>([&](auto& group) {
        for (std::size_t i = 0; i < group.get_item_count(); ++i) {
            std::string description;
            EXPECT_TRUE(group.get_item_description(i, description));
            lines.push_back(nuv::guid_text(group.get_parent()) + ' ' + nuv::guid_text(group.get_item_guid(i)) + ' ' +
                            group.get_item_default_path(i) + '/' + group.get_item_name(i) + ": " + description);
        }
    });
    const std::string group_1 = "2F8D7512-1810-41BE-9F86-B80643B28A19 ", group_2 = "9733E7C8-430B-4317-B2AA-7275F223D34B ";
    expect_lines(
        lines,
        {
            group_1 + "0D6BCB34-1660-4862-912B-A8CA3BC735F2 Playback Statistics/Reset statistics: "
                      "Resets playback statistics for one or more the selected items.",
            group_1 + "0B797ADD-4FD1-479F-8A37-E8B3491FD630 Playback Statistics/Copy statistics: "
                      "Copies playback statistics of the selected tracks to the Windows Clipboard.",
            group_1 + "7E4DC828-6D2C-487A-8B85-3F3EE4F54768 Playback Statistics/Paste statistics: "
                      "Overwrites playback statistics of the selected tracks with data stored in the Windows Clipboard.",
            group_2 + "036E5B94-63B6-4282-BDF7-09BA8B543FFC Playback Statistics/Write statistics to file tags: "
                      "Writes playback statistics to file tags on the selected items.",
            group_2 + "2A53B4AF-858A-4EEE-95D9-06A74A444F8F Playback Statistics/Import statistics from file tags: "
                      "Imports playback statistics from file tags on the selected items.",
            group_2 + "B19A8824-41E3-48E6-A054-6A97A3B29899 Playback Statistics/Export statistics to XML...: "
                      "Exports playback statistics of the selected tracks to an XML file.",
            "42820296-C3B6-4B24-9229-4B78938B2258 15D9655C-F6DE-4B98-8942-A9DAE2F9AD75 Playback Statistics/Rating: "
            "Changes rating of the specified items.",
        });
}

TEST_F(registration, keeps_the_identifiers_of_columns) {
    auto& columns = player.component_service<ostrevan::library_column_provider>();
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < columns.get_column_count(); ++i)
        lines.push_back(nuv::guid_text(columns.get_column_id(i)) + ' ' + columns.get_column_name(i) + ": " +
                        columns.get_display_script(i) + " by " + columns.get_sort_script(i) + ' ' +
                        std::to_string(columns.get_column_flags(i)));
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "A07A0249-0D0F-4EBF-9575-59BD44C14907 Play Count: %play_count% by %play_count% 4",
                         "3BAEAC90-3F85-4DC0-AE77-9C2158C2330A First Played: %first_played% by %first_played% 4",
                         "9F99DA29-85AA-42A7-9072-7AE828B976EA Last Played: %last_played% by %last_played% 4",
                         "BAF96414-7279-4471-8ADD-FD6CAFECC9CB Date Added: %added% by %added% 4",
                         "BCA594F2-7566-4D29-B465-2A8A94F87E51 Rating: %rating_stars_fixed% by %rating% 0",
                     }));
    EXPECT_EQ(columns.get_column_flags(99), 4U);
    EXPECT_DEATH((void)columns.get_column_name(5), "Bug check");
}

TEST_F(registration, offers_tag_synchronisation_among_the_advanced_settings) {
    std::vector<std::string> lines;
    ostrevan::service_ptr_t<ostrevan::advanced_setting> checkbox;
    each<ostrevan::advanced_setting>([&](auto& entry) {
        lines.push_back(nuv::guid_text(entry.parent()) + ' ' + nuv::guid_text(entry.id()) + ' ' + entry.label());
        if (entry.service_query(ostrevan::advanced_checkbox::checkbox_guid) != nullptr) checkbox = &entry;
    });
    expect_lines(lines,
                 {"35365484-CC58-4926-97E1-5E63F3ABB9E2 502BC959-89A0-4DC2-B73A-E7A54DDB2075 Playback Statistics",
                  "502BC959-89A0-4DC2-B73A-E7A54DDB2075 BE5DDEBA-0A25-4AAB-B60F-B597991C582C Automatically synchronize "
                  "file tags with statistics (causes file tag rewrites during playback, disrecommended)"});
    ASSERT_TRUE(checkbox);
    auto& box = static_cast<ostrevan::advanced_checkbox&>(*checkbox);
    EXPECT_FALSE(box.default_state());
    box.set_state(true);
    EXPECT_TRUE(quorvel::tag_sync_enabled.get());
    EXPECT_TRUE(player.configuration.values.at(box.id()));
    box.set_state(false);
    EXPECT_FALSE(box.get_state());
}

TEST_F(registration, notices_that_its_library_was_renamed) {
    auto& version = player.component_service<ostrevan::component_version>();
    EXPECT_STREQ(version.version(), "3.1.9");
    struct row {
        const char* path;
        const char* line;  ///< null when all is well
    };
    constexpr row rows[] = {
        {"/usr/lib/quorvel.dll", nullptr},
        {"C:\\components\\quorvel.dll", nullptr},
        {"quorvel.dll", nullptr},
        {"/usr/lib/Quorvel.dll", "Component rename detected: quorvel.dll >> Quorvel.dll"},
        {"/quorvel.dll/stats.so", "Component rename detected: quorvel.dll >> stats.so"},
    };
    for (const auto& [path, line] : rows) {
        player.crash_log.lines.clear();
        player.component().set_library_path(path);
        EXPECT_EQ(version.test_installation(), line == nullptr) << path;
        EXPECT_EQ(player.crash_log.lines, line == nullptr ? std::vector<std::string>{} : std::vector<std::string>{line});
    }
}

}  // namespace
