#include "player/core/component_loader.h"

#include <gmock/gmock.h>

#include "player/services/player_api.h"

namespace ostrevan::core {
namespace {

using namespace testing;

class component_loading : public testing::Test {
protected:
    main_loop loop_{[](const char*) {}};
    service_registry services_;
    service_uncounted_t<services::crash_log_service_impl> crash_log_{testing::TempDir() + "crash.log"};
    services::player_api_impl host_{loop_, services_, crash_log_, testing::TempDir(), true};
    player_interface block_ = host_.interface_block();

    static std::string path_of(const std::string& name) { return std::string(BROKEN_COMPONENTS) + "/" + name + ".dll"; }
};

TEST_F(component_loading, goes_on_past_broken_components_naming_the_file_and_the_fault) {
    constexpr std::pair<const char*, const char*> faults[] = {
        {"debug_mode", "it was built with the debug mode of the standard library, and this player with"},
        {"debug_sdk", "it was built with the debug mode of the standard library, and this player with"},
        {"no_entry", "no entry ostrevan_get_interface"},
        {"no_services", "offers nothing"},
        {"not_a_library", "not a library"},
        {"old_strings", "it was built with the string ABI from before C++11, and this player with"},
        {"refuses", "it refuses players made for interface version"},
        {"too_new", "too new"},
        {"too_old", "too old"},
        {"wrong_magic", "returns no component"}};
    std::vector<std::string> failures;
    const auto loaded =
        load_components(BROKEN_COMPONENTS, "", block_, [&](const std::string& message) { failures.push_back(message); });
    ASSERT_EQ(failures.size(), std::size(faults));
    for (std::size_t i = 0; i < failures.size(); ++i)
        EXPECT_THAT(failures[i], AllOf(HasSubstr(path_of(faults[i].first)), HasSubstr(faults[i].second), EndsWith(".")));
    ASSERT_EQ(loaded.size(), 1U);
    EXPECT_EQ(loaded[0].path, path_of("whole"));
}

}  // namespace
}  // namespace ostrevan::core
