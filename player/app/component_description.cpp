#include "player/app/component_description.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <typeinfo>

#include "ostrevan/advanced_settings.h"
#include "ostrevan/context_menu.h"
#include "ostrevan/field_provider.h"
#include "ostrevan/library.h"
#include "ostrevan/library_columns.h"
#include "ostrevan/main_menu.h"
#include "ostrevan/startup.h"
#include "ostrevan/statistics_collector.h"
#include "ostrevan/tag_edit.h"
#include "ostrevan/track_properties.h"
#include "player/core/component_call.h"

namespace ostrevan::app {
namespace {

/// The classes of services that the player asks components for.
constexpr std::pair<nuv::guid, const char*> class_names[] = {
    {advanced_setting::class_guid, "advanced_setting"},
    {component_version::class_guid, "component_version"},
    {context_menu_item::class_guid, "context_menu_item"},
    {field_provider::class_guid, "field_provider"},
    {initialisation_stage::class_guid, "initialisation_stage"},
    {library_callback::class_guid, "library_callback"},
    {library_column_provider::class_guid, "library_column_provider"},
    {main_menu_commands::class_guid, "main_menu_commands"},
    {playback_statistics_collector::class_guid, "playback_statistics_collector"},
    {startup_notification::class_guid, "startup_notification"},
    {tag_edit_callback::class_guid, "tag_edit_callback"},
    {track_property_provider::class_guid, "track_property_provider"},
};

std::string braced(const nuv::guid& id) { return "{" + nuv::guid_text(id) + "}"; }

std::string class_name(const nuv::guid& service_class) {
    const auto* const known = std::ranges::find(class_names, service_class, &std::pair<nuv::guid, const char*>::first);
    return known == std::end(class_names) ? braced(service_class) : known->second;
}

void append(std::string& list, const std::string& word) { list += (list.empty() ? "" : ", ") + word; }

}  // namespace

std::vector<std::pair<std::string, std::string>> describe(
    const core::loaded_component& component, const std::vector<services::index_manager_impl::registration>& indexes) {
    std::map<std::string, std::size_t> counts;
    std::string services, fields, keys;
    for (std::size_t i = 0; i < component.api->service_count(); ++i) {
        const auto [service_class, service] = component.api->service_at(i);
        ++counts[class_name(service_class)];
        if (service_class != field_provider::class_guid) continue;
        auto& provider = static_cast<field_provider&>(*service);
        core::call_component(provider, [&] {
            for (std::size_t field = 0; field < provider.get_field_count(); ++field)
                append(fields, provider.get_field_name(field));
        });
    }
    for (const auto& [name, count] : counts) append(services, count == 1 ? name : name + " (" + std::to_string(count) + ")");
    const auto file = std::filesystem::path(component.path).filename().string();
    for (const auto& registered : indexes) {
        const index_client& client = *registered.client;
        if (core::module_of(typeid(client)) == file) append(keys, braced(registered.index));
    }

    std::vector<std::pair<std::string, std::string>> facts = {
        {"File", component.path},
        {"Interface", std::to_string(interface_version) + "." + std::to_string(component.interface_revision)},
        {"Services", services},
        {"Fields", fields},
        {"Indexes", keys}};
    std::erase_if(facts, [](const auto& fact) { return fact.second.empty(); });
    return facts;
}

}  // namespace ostrevan::app
