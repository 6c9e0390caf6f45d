#include "ostrevan/component.h"
#include "ostrevan/console.h"
#include "ostrevan/core_api.h"
#include "ostrevan/popup.h"
#include "ostrevan/registration.h"
#include "ostrevan/startup.h"

namespace {

ostrevan::service_ptr_t<ostrevan::console_service> kept;
ostrevan::service_ptr_t<ostrevan::popup_message_v3> kept_extension;

class keeper : public ostrevan::startup_notification {
public:
    void on_startup() override {
        kept = ostrevan::get_service<ostrevan::console_service>();
        kept_extension =
            ostrevan::query_service<ostrevan::popup_message_v3>(*ostrevan::get_service<ostrevan::popup_message>());
        kept->print("kept");
    }
};
ostrevan::service_factory_single_t<keeper> g_keeper;

}  // namespace

extern "C" OSTREVAN_EXPORT ostrevan::component_interface* ostrevan_get_interface(const ostrevan::player_interface* player) {
    return ostrevan::component_entry(player);
}
