#include "ostrevan/configuration.h"

#include <utility>

#include "ostrevan/core_api.h"

namespace ostrevan {
namespace {

constinit config_variable* first_variable = nullptr;

}  // namespace

config_variable::config_variable(const nuv::guid& id) noexcept : id_(id), next_(std::exchange(first_variable, this)) {}

config_variable* config_variable::first() noexcept { return first_variable; }

bool cfg_bool::get() const {
    std::call_once(loaded_, [this]() noexcept {
        try {
            if (const auto store = find_service<configuration_store>()) {
                value_ = store->get_bool(id(), fallback_);
                known_ = true;
            }
        } catch (...) {  // the default is used until the player ends
        }
    });
    return value_.load(std::memory_order_relaxed);
}

void cfg_bool::set(bool value) {
    get_service<configuration_store>()->set_bool(id(), value);
    std::call_once(loaded_, [] {});
    value_ = value;
    known_ = true;
}

void cfg_bool::load() { (void)get(); }

void cfg_bool::save() {
    if (const auto store = find_service<configuration_store>(); store && known_) store->set_bool(id(), value_);
}

}  // namespace ostrevan
