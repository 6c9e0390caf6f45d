// The smallest component: it loads, and has one service.
#include "ostrevan/component.h"
#include "ostrevan/component_version.h"
#include "ostrevan/registration.h"

namespace {

class whole_version : public ostrevan::component_version {
public:
    const char* name() const noexcept override { return "Whole"; }
    const char* version() const noexcept override { return "1.0"; }
    const char* about() const noexcept override { return ""; }
    const char* file_name() const noexcept override { return "whole.dll"; }
    bool test_installation() override { return true; }
};
ostrevan::service_factory_single_t<whole_version> the_version;

}  // namespace

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player) {
    return ostrevan::component_entry(player);
}
