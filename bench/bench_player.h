#pragma once

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <vector>

#include "player/core/component_loader.h"
#include "player/services/configuration_store.h"
#include "player/services/console_service.h"
#include "player/services/crash_log_service.h"
#include "player/services/filesystem.h"
#include "player/services/hash_service.h"
#include "player/services/index_manager.h"
#include "player/services/main_thread_callback_service.h"
#include "player/services/player_api.h"
#include "player/services/text_helper_service.h"
#include "player/services/thread_service.h"
#include "player/titleformat/track_fields.h"

namespace bench {

/// A folder in the working directory, removed at exit.
const std::filesystem::path& folder();
/// A new folder inside it.
std::filesystem::path new_folder();

/// Sets a time zone with summer time. Call before anything uses local time.
void use_summer_time();

/// The component, linked in and started, in a player made of the real parts that the benches need: loop, index, digest,
/// lower-casing. The library is empty. One at a time, made on the main thread.
class bench_player {
public:
    explicit bench_player(const std::filesystem::path& profile);
    /// Everything written is on disk afterwards.
    ~bench_player();
    bench_player(const bench_player&) = delete;
    bench_player& operator=(const bench_player&) = delete;

    /// The first service of a class, the component's included.
    template <typename T>
    T& service() {
        return static_cast<T&>(*services.at(T::class_guid, 0));
    }

    /// What the player notes of a counted play.
    void note_play(const ostrevan::metadb_handle& track);

    [[nodiscard]] const ostrevan::titleformat::component_fields& fields() const noexcept { return fields_; }

    ostrevan::core::main_loop loop;
    ostrevan::core::service_registry services;

    std::atomic<std::size_t> refreshes = 0;
    std::atomic<std::size_t> refreshed_keys = 0;

private:
    ostrevan::service_uncounted_t<ostrevan::services::crash_log_service_impl> crash_log_;
    ostrevan::service_uncounted_t<ostrevan::services::console_service_impl> console_;
    ostrevan::services::player_api_impl host_;
    const ostrevan::player_interface block_;
    ostrevan::service_uncounted_t<ostrevan::services::hash_service_impl> hash_;
    ostrevan::service_uncounted_t<ostrevan::services::text_helper_service_impl> text_;
    ostrevan::service_uncounted_t<ostrevan::services::configuration_store_impl> configuration_;
    ostrevan::service_uncounted_t<ostrevan::services::main_thread_callback_service_impl> main_thread_;
    ostrevan::service_uncounted_t<ostrevan::services::thread_service_impl> threads_;
    ostrevan::service_uncounted_t<ostrevan::services::local_filesystem_impl> files_;
    ostrevan::titleformat::component_fields fields_;
    std::vector<ostrevan::core::loaded_component> components_;

public:
    ostrevan::index::index_store records;
    ostrevan::service_uncounted_t<ostrevan::services::index_manager_impl> index;
};

}  // namespace bench
