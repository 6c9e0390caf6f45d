#pragma once

#include <atomic>
#include <cstddef>
#include <filesystem>
#include <vector>

#include "player/core/component_loader.h"
#include "player/core/configuration_file.h"
#include "player/core/filesystems.h"
#include "player/core/hash_service_impl.h"
#include "player/core/host.h"
#include "player/core/text_helper_impl.h"
#include "player/core/thread_services.h"
#include "player/index/index_service.h"
#include "player/titleformat/track_fields.h"

namespace bench {

/// A folder on the disk of the working directory, gone at exit.
const std::filesystem::path& folder();
/// A new folder in it.
std::filesystem::path new_folder();

/// Local time has summer time, wherever the bench runs. Before anything asks for local time.
void use_summer_time();

/// The component, whose objects are linked in, in a player made of the real parts that the benches need: loop, index,
/// digest, lower-casing. Started; the library is empty. One at a time, made on the main thread.
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

    ostrevan::main_loop loop;
    ostrevan::service_registry services;

    std::atomic<std::size_t> refreshes = 0;
    std::atomic<std::size_t> refreshed_keys = 0;

private:
    ostrevan::service_uncounted_t<ostrevan::crash_log_impl> crash_log_;
    ostrevan::service_uncounted_t<ostrevan::console_impl> console_;
    ostrevan::host host_;
    const ostrevan::player_interface block_;
    ostrevan::service_uncounted_t<ostrevan::md5_service> hash_;
    ostrevan::service_uncounted_t<ostrevan::text_helper_impl> text_;
    ostrevan::service_uncounted_t<ostrevan::configuration_file> configuration_;
    ostrevan::service_uncounted_t<ostrevan::main_thread_service_impl> main_thread_;
    ostrevan::service_uncounted_t<ostrevan::thread_service_impl> threads_;
    ostrevan::service_uncounted_t<ostrevan::local_filesystem> files_;
    ostrevan::titleformat::component_fields fields_;
    std::vector<ostrevan::loaded_component> components_;

public:
    ostrevan::index_store records;
    ostrevan::service_uncounted_t<ostrevan::index_service> index;
};

}  // namespace bench
