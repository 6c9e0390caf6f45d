#include "player/services/configuration_store.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "player/system/durable_file.h"

namespace ostrevan::services {
namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw std::runtime_error("The configuration " + path + " cannot be read: " + reason +
                             ". Correct the file, or move it away to start with the default settings.");
}

}  // namespace

configuration_store_impl::configuration_store_impl(std::string path) : path_(std::move(path)) {
    std::error_code error;
    const auto status = std::filesystem::status(path_, error);
    if (status.type() == std::filesystem::file_type::not_found) return;
    if (!error && !std::filesystem::is_regular_file(status)) refuse(path_, "it is not a file");
    std::ifstream file(path_, std::ios::binary);
    if (!file) refuse(path_, error ? error.message() : std::system_category().message(errno));
    const auto stored = nlohmann::json::parse(file, nullptr, false);
    if (!stored.is_object()) refuse(path_, "it is not a JSON object");
    for (const auto& [name, value] : stored.items())
        if (value.is_boolean()) values_[name] = value.get<bool>();
}

bool configuration_store_impl::get_bool(const nuv::guid& id, bool fallback) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(nuv::guid_text(id));
    return found == values_.end() ? fallback : found->second;
}

void configuration_store_impl::set_bool(const nuv::guid& id, bool value) {
    const std::lock_guard lock(mutex_);
    const auto name = nuv::guid_text(id);
    if (const auto found = values_.find(name); found != values_.end() && found->second == value) return;
    auto changed = values_;
    changed[name] = value;
    write(changed);
    values_ = std::move(changed);
}

void configuration_store_impl::write(const std::map<std::string, bool>& values) const {
    constexpr unsigned user_only = 0600;
    system::replace_file(path_, nlohmann::json(values).dump(2) + "\n", user_only);
}

}  // namespace ostrevan::services
