#include "quorvel/platform/beep.h"

#include "ostrevan/clipboard.h"
#include "ostrevan/core_api.h"

namespace quorvel {

void beep() {
    if (const auto service = ostrevan::find_service<ostrevan::beep_service>()) service->beep();
}

}  // namespace quorvel
