#include "ostrevan/core_api.h"
#include "ostrevan/registration.h"
#include "ostrevan/startup.h"
#include "quorvel/store/legacy_import.h"

namespace quorvel {
namespace {

/// A player that was started to be quiet is not held up by an import.
class legacy_start : public ostrevan::startup_notification {
public:
    void on_startup() override {
        if (!ostrevan::core_api::is_quiet_mode()) PCDB_import_legacy();
    }
};

ostrevan::service_factory_single_t<legacy_start> import_at_start;

}  // namespace
}  // namespace quorvel
