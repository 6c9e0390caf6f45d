#include "player/core/component_loader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "ostrevan/component_version.h"
#include "player/core/host.h"

namespace ostrevan {
namespace {

class component_loading : public testing::Test {
protected:
    main_loop loop_{[](const char*) {}};
    service_registry services_;
    service_uncounted_t<crash_log_impl> crash_log_{testing::TempDir() + "crash.log"};
    host host_{loop_, services_, crash_log_, testing::TempDir(), true};
    player_interface block_ = host_.interface_block();

    static std::string path_of(const std::string& name) { return std::string(BROKEN_COMPONENTS) + "/" + name + ".dll"; }
    std::string refusal_of(const std::string& name) {
        try {
            load_component(path_of(name), block_);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "it was loaded";
    }
};

TEST_F(component_loading, refuses_each_broken_component_naming_the_file_and_the_fault) {
    const struct {
        const char* file;
        const char* fault;
    } cases[] = {
        {"not_a_library", "not a library"},
        {"no_entry", "no entry ostrevan_get_interface"},
        {"wrong_magic", "not a component's"},
        {"too_old", "too old"},
        {"too_new", "too new"},
        {"refuses", "refuses interface version"},
        {"no_services", "offers nothing"},
        {"absent", "not a library"},
    };
    for (const auto& [file, fault] : cases) {
        const auto message = refusal_of(file);
        EXPECT_NE(message.find(path_of(file)), std::string::npos) << message;
        EXPECT_NE(message.find(fault), std::string::npos) << message;
        EXPECT_TRUE(message.ends_with('.')) << "no way out: " << message;
    }
}

TEST_F(component_loading, goes_on_past_broken_components) {
    std::vector<std::string> failures;
    const auto loaded =
        load_components(BROKEN_COMPONENTS, block_, [&](const std::string& message) { failures.push_back(message); });
    ASSERT_EQ(loaded.size(), 1U);
    EXPECT_EQ(loaded[0].path, path_of("whole"));
    EXPECT_EQ(failures.size(), 7U);

    ASSERT_EQ(loaded[0].api->service_count(), 1U);
    const auto entry = loaded[0].api->service_at(0);
    ASSERT_EQ(entry.service_class, component_version::class_guid);
    EXPECT_STREQ(static_cast<component_version*>(entry.service)->name(), "Whole");
    EXPECT_EQ(module_of(typeid(*entry.service)), "whole.dll");
}

TEST_F(component_loading, of_a_folder_that_is_not_there_is_told) {
    for (const std::string& folder : {testing::TempDir() + "no/such/folder", std::string()}) {
        std::string told;
        EXPECT_TRUE(load_components(folder, block_, [&](const std::string& message) { told = message; }).empty());
        EXPECT_NE(told.find(folder), told.npos);
        EXPECT_NE(told.find("--components"), told.npos) << told;
    }
}

}  // namespace
}  // namespace ostrevan
