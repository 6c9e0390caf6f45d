#include "player/app/component_start.h"

#include <algorithm>
#include <filesystem>

#include "ostrevan/component_version.h"
#include "ostrevan/configuration.h"
#include "ostrevan/startup.h"

namespace ostrevan::app {
namespace {

template <typename Visitor>
void for_each_entry(const std::vector<core::loaded_component>& components, Visitor&& visit) {
    for (const auto& component : components)
        for (std::size_t i = 0; i < component.api->service_count(); ++i) visit(component, component.api->service_at(i));
}

template <typename Visitor>
void for_each_variable(const std::vector<core::loaded_component>& components, Visitor&& visit) {
    for (const auto& component : components)
        for (std::size_t i = 0; i < component.api->config_variable_count(); ++i) visit(component.api->config_variable_at(i));
}

}  // namespace

void register_components(const std::vector<core::loaded_component>& components, core::service_registry& services,
                         titleformat::component_fields& fields) {
    for_each_entry(components, [&](const core::loaded_component&, const component_api::service_entry& entry) {
        services.add(entry.service_class, *entry.service);
    });
    services.for_each<field_provider>([&](field_provider& provider) { fields.add(provider); }, "its fields");
}

void check_installations(const std::vector<core::loaded_component>& components, const component_failure& on_failure) {
    for_each_entry(components, [&](const core::loaded_component& component, const component_api::service_entry& entry) {
        if (entry.service_class != component_version::class_guid) return;
        auto& version = static_cast<component_version&>(*entry.service);
        bool is_whole = true;  // a failure to run the check is reported by the guard
        core::component_guard(on_failure).call(version, "its installation check", [&] {
            is_whole = version.test_installation();
        });
        if (is_whole) return;
        const bool is_named_right = std::filesystem::path(component.path).filename() == version.file_name();
        on_failure("Component " + component.path + " (" + version.name() + ") " +
                   (is_named_right ? std::string("finds that its installation is not whole. Install it again.")
                                   : "must be named " + std::string(version.file_name()) +
                                         ". Rename the file, or install the component again."));
    });
}

void start_components(const std::vector<core::loaded_component>& components, const core::service_registry& services,
                      const component_failure& on_failure, const std::function<void()>& between) {
    const core::component_guard guard(on_failure);
    for_each_variable(
        components, [&](config_variable& variable) { guard.call(variable, "reading a setting", [&] { variable.load(); }); });

    std::vector<initialisation_stage*> stages;
    services.for_each<initialisation_stage>([&](initialisation_stage& stage) { stages.push_back(&stage); });
    std::ranges::stable_sort(stages, {}, [](const initialisation_stage* stage) { return stage->stage(); });
    constexpr unsigned last_before_startup = 30;
    const auto later = std::ranges::find_if(stages, [](const auto* stage) { return stage->stage() > last_before_startup; });
    const auto run_stage = [&](initialisation_stage* stage) { guard.call(*stage, "starting", [&] { stage->on_stage(); }); };

    std::for_each(stages.begin(), later, run_stage);
    between();
    services.for_each<startup_notification>([](startup_notification& notified) { notified.on_startup(); }, "starting");
    std::for_each(later, stages.end(), run_stage);
}

void end_components(const std::vector<core::loaded_component>& components, const core::service_registry& services,
                    const component_failure& on_failure) {
    services.for_each<startup_notification>([](startup_notification& notified) { notified.on_shutdown(); }, "ending");
    const core::component_guard guard(on_failure);
    for_each_variable(
        components, [&](config_variable& variable) { guard.call(variable, "saving a setting", [&] { variable.save(); }); });
}

}  // namespace ostrevan::app
