#include "quorvel/platform/dialog.h"

#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/registration.h"
#include "ostrevan/startup.h"
#include "quorvel/platform/native_dialog_win32.h"

namespace quorvel {
namespace {

class close_dialogs_at_end : public ostrevan::startup_notification {
public:
    void on_shutdown() override { native_dialog::destroy_all(); }
};
ostrevan::service_factory_single_t<close_dialogs_at_end> g_close_dialogs_at_end;

}  // namespace

/// A player that draws dialogs itself draws these as well.
void open_dialog(ostrevan::dialog_rules_ptr rules) {
    if (const auto player = ostrevan::find_service<ostrevan::dialog_service>()) player->open(std::move(rules));
    else native_dialog::open(std::move(rules));
}

}  // namespace quorvel
