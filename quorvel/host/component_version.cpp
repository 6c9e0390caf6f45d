#include "ostrevan/component_version.h"

#include <string>
#include <string_view>

#include "nuv/text.h"
#include "ostrevan/registration.h"
#include "ostrevan/text_helpers.h"
#include "quorvel/platform/module_path.h"

namespace quorvel {
namespace {

/// What the player lists the component as, and the check that its library file has not been renamed.
class playback_statistics_version : public ostrevan::component_version {
public:
    const char* name() const noexcept override { return "Playback Statistics"; }
    const char* version() const noexcept override { return "3.1.9"; }
    const char* about() const noexcept override {
        return "quorvel 3.1.9\n"
               "\n"
               "Collects playback statistics for your music.";
    }
    const char* file_name() const noexcept override { return "quorvel.dll"; }

    bool test_installation() override {
        const std::string_view expected = file_name();
        const std::string path = module_path();
        const std::string_view actual = nuv::file_name_of(path);
        if (actual == expected) return true;

        std::string line = "Component rename detected: ";
        line.append(expected).append(" >> ").append(actual);
        ostrevan::uPrintCrashInfo_OnEvent(line.c_str());
        return false;
    }
};

ostrevan::service_factory_single_t<playback_statistics_version> g_component_version;

}  // namespace
}  // namespace quorvel
