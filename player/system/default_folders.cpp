#include "player/system/default_folders.h"

#include <cstdlib>
#include <filesystem>

namespace ostrevan::system {
namespace {

std::string absolute_from_environment(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value == '/' ? value : "";
}

}  // namespace

std::string default_profile() {
    if (const auto data = absolute_from_environment("XDG_DATA_HOME"); !data.empty()) return data + "/ostrevan";
    const auto home = absolute_from_environment("HOME");
    return home.empty() ? home : home + "/.local/share/ostrevan";
}

std::string configuration_file() {
    if (const auto folder = absolute_from_environment("XDG_CONFIG_HOME"); !folder.empty())
        return folder + "/ostrevan/config";
    const auto home = absolute_from_environment("HOME");
    return home.empty() ? home : home + "/.config/ostrevan/config";
}

std::string default_components() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return {};
    const auto beside = program.parent_path() / "components";
    if (std::filesystem::is_directory(beside, error)) return beside.string();
    return (program.parent_path() / INSTALLED_COMPONENTS).lexically_normal().string();
}

std::string own_components() {
    const auto folder = default_profile() + "/components";
    std::error_code error;
    return folder.front() == '/' && std::filesystem::is_directory(folder, error) ? folder : std::string{};
}

}  // namespace ostrevan::system
