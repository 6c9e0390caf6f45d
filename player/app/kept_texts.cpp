#include "player/app/kept_texts.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>

#include "player/system/durable_file.h"

namespace ostrevan::app {

kept_texts::kept_texts(core::main_loop& loop, std::string path) : path_(std::move(path)), saving_(loop) {
    std::ifstream file(path_);
    const auto stored = nlohmann::json::parse(file, nullptr, false);
    if (!stored.is_object()) return;
    for (const auto& [name, text] : stored.items())
        if (text.is_string()) texts_[name] = text.get<std::string>();
}

std::string kept_texts::get(const std::string& name) const {
    const auto found = texts_.find(name);
    return found == texts_.end() ? std::string() : found->second;
}

void kept_texts::set(const std::string& name, std::string text) {
    auto& kept = texts_[name];
    if (kept == text) return;
    kept = std::move(text);
    saving_.ask([path = path_, texts = texts_](const std::atomic<bool>&) -> core::latest_work::outcome {
        constexpr unsigned user_only = 0600;
        system::replace_file(
            path, nlohmann::json(texts).dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n", user_only);
        return {};
    });
}

}  // namespace ostrevan::app
