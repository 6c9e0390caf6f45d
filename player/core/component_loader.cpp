#include "player/core/component_loader.h"

#include <dlfcn.h>

#include <filesystem>
#include <map>
#include <stdexcept>
#include <system_error>

namespace ostrevan::core {
namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason, const std::string& way_out) {
    throw std::runtime_error("Component " + path + " was not loaded: " + reason + ". " + way_out);
}

std::string version_text(std::uint32_t version) { return "made for interface version " + std::to_string(version); }

/// Reads plain data only, and stops at the first part that is not as expected.
void check_handshake(const component_interface* component, const player_interface& player, const std::string& path) {
    constexpr const char* other_file = "Move the file out of the components folder.";
    constexpr const char* other_build = "Install the component as it was built for this player.";
    if (component == nullptr) refuse(path, "it refuses players " + version_text(player.version), other_build);
    if (component->magic != component_magic) refuse(path, "its entry returns no component", other_file);
    if (component->version != player.version) {
        const bool is_old = component->version < player.version;
        refuse(path,
               std::string(is_old ? "it is too old, " : "it is too new, ") + version_text(component->version) + " and not " +
                   std::to_string(player.version),
               is_old ? other_build : "Update the player.");
    }
    if (const auto difference = difference_of(component->build, player.build))
        refuse(path,
               "it was built with " + std::string(difference->first) + ", and this player with " +
                   std::string(difference->second),
               other_build);
    if (component->api == nullptr) refuse(path, "it offers nothing", "Install the component again.");
}

}  // namespace

loaded_component load_component(const std::string& path, const player_interface& player) {
    void* const module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr)
        refuse(path, std::string("it is not a library that can be loaded (") + ::dlerror() + ")",
               "Install the component again, or move the file out of the components folder.");
    const auto entry = reinterpret_cast<get_interface_function>(::dlsym(module, entry_name));
    if (entry == nullptr) {
        ::dlclose(module);
        refuse(path, std::string("it has no entry ") + entry_name, "Move the file out of the components folder.");
    }
    try {
        const auto* const component = entry(&player);
        check_handshake(component, player, path);
        component->api->set_library_path(path.c_str());
        return {path, component->api, component->revision};
    } catch (...) {
        ::dlclose(module);
        throw;
    }
}

namespace {

using sink = std::function<void(const std::string& message)>;

/// By their names, which decide the order.
std::map<std::string, std::string> modules_in(const std::string& path, const sink& on_failure) {
    std::map<std::string, std::string> files;
    std::error_code error;
    // The system would look for a name without a folder among its own libraries.
    if (std::filesystem::is_regular_file(path, error))
        files.emplace("", (path.find('/') == std::string::npos ? "./" : "") + path);
    else
        for (std::filesystem::directory_iterator it(path, error), end; !error && it != end; it.increment(error))
            if (it->path().extension() == ".dll") files.emplace(it->path().filename().string(), it->path().string());
    if (error)
        on_failure("The components in " + path + " are not loaded, and so no play may be counted: " + error.message() +
                   ". Name the right folder with --components.");
    return files;
}

}  // namespace

std::vector<loaded_component> load_components(const std::string& path, const std::string& more,
                                              const player_interface& player, const sink& on_failure) {
    if (path.empty())
        on_failure(
            "No component is loaded, and so no play is counted: the system does not say where the program is "
            "(/proc is not there). Name the folder with --components.");
    auto files = more.empty() ? std::map<std::string, std::string>{} : modules_in(more, on_failure);
    if (!path.empty()) files.merge(modules_in(path, on_failure));

    std::vector<loaded_component> loaded;
    for (const auto& [name, file] : files) {
        try {
            loaded.push_back(load_component(file, player));
        } catch (const std::exception& failure) {
            on_failure(failure.what());
        }
    }
    return loaded;
}

const component_version* version_of(const loaded_component& component) {
    for (std::size_t i = 0; i < component.api->service_count(); ++i) {
        const auto entry = component.api->service_at(i);
        if (entry.service_class == component_version::class_guid)
            return static_cast<const component_version*>(entry.service);
    }
    return nullptr;
}

std::string name_of(const loaded_component& component) {
    const auto* const version = version_of(component);
    return version != nullptr ? version->name() : std::filesystem::path(component.path).stem().string();
}

}  // namespace ostrevan::core
