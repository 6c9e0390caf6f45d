#include "player/app/loading_keys.h"

namespace ostrevan::app {

loading_keys::loading_keys(const services::index_manager_impl& index) {
    for (const auto& registered : index.registrations()) {
        const auto memory = query_service<index_key_memory>(*registered.client);
        if (!memory) continue;
        client_ = registered.client;
        memory_ = memory.get();
        return;
    }
}

/// Whoever needs a key that could not be computed now asks for it later, and gets the reason.
std::uint64_t loading_keys::key_of(const file_info& info, const playable_location& location) noexcept {
    try {
        return client_->key_of(info, location);
    } catch (...) {
        return 0;
    }
}

void loading_keys::remember(std::uint64_t serial, std::uint64_t key) noexcept {
    try {
        if (key != 0) memory_->remember(serial, key);
    } catch (...) {  // as above
    }
}

}  // namespace ostrevan::app
