#include <vector>

#include "ostrevan/component.h"
#include "ostrevan/configuration.h"
#include "ostrevan/core_api.h"
#include "ostrevan/registration.h"

namespace ostrevan {
namespace {

class registered_component final : public component_api {
public:
    registered_component() {
        for (const auto* link = service_registration::first(); link != nullptr; link = link->next())
            services_.push_back({link->service_class(), &link->service()});
        for (auto* variable = config_variable::first(); variable != nullptr; variable = variable->next())
            variables_.push_back(variable);
    }

    std::size_t service_count() const noexcept override { return services_.size(); }
    service_entry service_at(std::size_t index) const noexcept override { return services_[index]; }
    std::size_t config_variable_count() const noexcept override { return variables_.size(); }
    config_variable& config_variable_at(std::size_t index) const noexcept override { return *variables_[index]; }
    void set_library_path(const char* utf8_path) override { core_api::set_library_path(utf8_path); }

private:
    std::vector<service_entry> services_;
    std::vector<config_variable*> variables_;
};

}  // namespace

component_interface* component_entry(const player_interface* player, const build_fingerprint& build) noexcept {
    if (player == nullptr || player->magic != player_magic) return nullptr;
    static component_interface block;
    block = {};
    if (player->version != interface_version) return &block;
    if (difference_of(build, player->build)) block.build = build;
    if (difference_of(block.build, player->build)) return &block;
    try {
        static registered_component component;
        core_api::set_player(player->api);
        block.api = &component;
    } catch (...) {  // without services the player refuses the component
    }
    return &block;
}

}  // namespace ostrevan
