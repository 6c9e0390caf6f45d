#pragma once

#include <string>

#include "ostrevan/exceptions.h"
#include "ostrevan/player_api.h"

/// The player that loaded this component. Before the handshake every function behaves as with a player without services.
namespace ostrevan::core_api {

/// [any-thread]
bool is_main_thread() noexcept;
/// Bug check with the text "core_api::ensure_main_thread" when called on another thread.
void ensure_main_thread() noexcept;
/// [any-thread]
bool is_shutting_down() noexcept;
/// [any-thread]
bool is_quiet_mode() noexcept;
/// [any-thread]
const char* profile_path() noexcept;
/// [main-thread]
void* main_window() noexcept;
/// Path from which the player loaded this component. [any-thread]
const std::string& library_path() noexcept;

/// The player's block, or null before the handshake. [any-thread]
player_api* player() noexcept;

/// Installs the player by hand. For programs that link a component's objects instead of loading it.
void set_player(player_api* player) noexcept;
void set_library_path(std::string path);

}  // namespace ostrevan::core_api

namespace ostrevan {

/// Ends the process with the text in the crash log, because code broke a promise of an interface. [any-thread]
[[noreturn]] void uBugCheck(const char* text = "Bug check") noexcept;

/// The first service registered under `T::class_guid`, or empty. [any-thread]
template <typename T>
service_ptr_t<T> find_service() noexcept {
    player_api* const player = core_api::player();
    return service_ptr_t<T>(player == nullptr ? nullptr : static_cast<T*>(player->service_at(T::class_guid, 0)));
}

/// As `find_service`; throws `exception_service_not_found` when there is none. [any-thread]
template <typename T>
service_ptr_t<T> get_service() {
    auto found = find_service<T>();
    if (!found) throw exception_service_not_found();
    return found;
}

/// Calls `visit` with every service registered under `T::class_guid`, in the order of registration. [any-thread]
template <typename T, typename Visitor>
void for_each_service(Visitor&& visit) {
    player_api* const player = core_api::player();
    if (player == nullptr) return;
    for (std::size_t i = 0, count = player->service_count(T::class_guid); i < count; ++i)
        visit(*static_cast<T*>(player->service_at(T::class_guid, i)));
}

}  // namespace ostrevan
