#pragma once

#include "ostrevan/index.h"
#include "player/library/library_load.h"
#include "player/services/index_manager.h"

namespace ostrevan::app {

/// Computes keys with the first key function that wants to remember them, while the library is loaded.
class loading_keys final : public library::key_maker {
public:
    explicit loading_keys(const services::index_manager_impl& index);
    /// Null when no key function wants keys.
    [[nodiscard]] library::key_maker* maker() noexcept { return memory_ == nullptr ? nullptr : this; }

    [[nodiscard]] std::uint64_t key_of(const file_info& info, const playable_location& location) noexcept override;
    void remember(std::uint64_t serial, std::uint64_t key) noexcept override;

private:
    index_client_ptr client_;
    index_key_memory* memory_ = nullptr;
};

}  // namespace ostrevan::app
