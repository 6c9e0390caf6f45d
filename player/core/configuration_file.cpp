#include "player/core/configuration_file.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "player/core/durable_file.h"

namespace ostrevan {

configuration_file::configuration_file(std::string path) : path_(std::move(path)) {
    std::ifstream file(path_, std::ios::binary);
    if (!file) return;
    try {
        const auto stored = nlohmann::json::parse(file);
        for (const auto& [name, value] : stored.items())
            if (value.is_boolean()) values_[name] = value.get<bool>();
        if (!stored.is_object()) throw std::runtime_error("it is not a JSON object");
    } catch (const std::exception& error) {
        throw std::runtime_error("The configuration " + path_ + " cannot be read: " + error.what() +
                                 ". Correct the file, or move it away to start with the default settings.");
    }
}

bool configuration_file::get_bool(const nuv::guid& id, bool fallback) const {
    const std::lock_guard lock(mutex_);
    const auto found = values_.find(nuv::guid_text(id));
    return found == values_.end() ? fallback : found->second;
}

void configuration_file::set_bool(const nuv::guid& id, bool value) {
    const std::lock_guard lock(mutex_);
    const auto name = nuv::guid_text(id);
    if (const auto found = values_.find(name); found != values_.end() && found->second == value) return;
    auto changed = values_;
    changed[name] = value;
    write(changed);
    values_ = std::move(changed);
}

void configuration_file::write(const std::map<std::string, bool>& values) const {
    replace_file(path_, nlohmann::json(values).dump(2) + "\n");
}

}  // namespace ostrevan
