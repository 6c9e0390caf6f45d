#include <utility>

#include "ostrevan/core_api.h"
#include "quorvel/platform/dialog.h"

namespace quorvel {

void open_dialog(ostrevan::dialog_rules_ptr rules) {
    ostrevan::get_service<ostrevan::dialog_service>()->open(std::move(rules));
}

}  // namespace quorvel
