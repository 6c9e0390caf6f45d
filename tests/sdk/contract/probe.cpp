// A component that notes what happens to it, for tests that load it. It keeps services in static objects, which are released
// while the process exits.
#include <string>

#include "ostrevan/component.h"
#include "ostrevan/console.h"
#include "ostrevan/core_api.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/main_thread.h"
#include "ostrevan/popup.h"
#include "ostrevan/registration.h"
#include "ostrevan/startup.h"

namespace {

using namespace ostrevan;

std::string events;
service_ptr_t<console_service> kept;
service_ptr_t<popup_message_v3> kept_extension;

class note : public main_thread_callback {
public:
    explicit note(const char* text) : text_(text) {}
    void callback_run() override { events += text_; }

private:
    const char* text_;
};
void post(const char* text) { get_service<main_thread_callback_service>()->add_callback(service_new<note>(text)); }

class notified : public startup_notification {
public:
    void on_startup() override {
        events += "startup ";
        kept = get_service<console_service>();
        kept_extension = query_service<popup_message_v3>(*get_service<popup_message>());
        post("posted ");
    }
    void on_shutdown() override {
        events += core_api::is_shutting_down() ? "shutdown " : "shutdown before its time ";
        post("posted too late ");
    }
};
service_factory_single_t<notified> g_notified;

class numbered_stage : public initialisation_stage {
public:
    explicit numbered_stage(unsigned number) : number_(number) {}
    unsigned stage() const noexcept override { return number_; }
    void on_stage() override { events += std::to_string(number_) + ' '; }

private:
    const unsigned number_;
};
service_factory_single_t<numbered_stage, initialisation_stage> g_40(40U), g_30(30U), g_31(31U), g_5(5U);

class probe_field : public field_provider {
public:
    std::size_t get_field_count() const noexcept override { return 1; }
    const char* get_field_name(std::size_t) const override { return "probe"; }
    bool process_field(std::size_t, metadb_handle* track, titleformat_text_out& out) override {
        out.write({}, "at ");
        out.write({}, track->location().path.c_str());
        return false;  // the text is shown all the same
    }
};
service_factory_single_t<probe_field> g_field;

}  // namespace

extern "C" OSTREVAN_EXPORT component_interface* ostrevan_get_interface(const player_interface* player) {
    events.clear();
    return component_entry(player);
}
extern "C" OSTREVAN_EXPORT const char* probe_events() { return events.c_str(); }
