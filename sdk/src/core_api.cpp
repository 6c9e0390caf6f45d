#include "ostrevan/core_api.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace ostrevan {
namespace {

/// Constant-initialised, so that static objects of other files may use it before it is set.
constinit std::atomic<player_api*> current_player{nullptr};

std::string& library_path_storage() {
    static std::string path;
    return path;
}

}  // namespace

namespace core_api {

player_api* player() noexcept { return current_player.load(std::memory_order_acquire); }
void set_player(player_api* player) noexcept { current_player.store(player, std::memory_order_release); }

bool is_main_thread() noexcept {
    const auto* api = player();
    return api != nullptr && api->is_main_thread();
}

void ensure_main_thread() noexcept {
    if (!is_main_thread()) uBugCheck("core_api::ensure_main_thread");
}

bool is_shutting_down() noexcept {
    const auto* api = player();
    return api != nullptr && api->is_shutting_down();
}

bool is_quiet_mode() noexcept {
    const auto* api = player();
    return api != nullptr && api->is_quiet_mode();
}

const char* profile_path() noexcept {
    const auto* api = player();
    return api == nullptr ? "" : api->profile_path();
}

void* main_window() noexcept {
    const auto* api = player();
    return api == nullptr ? nullptr : api->main_window();
}

const std::string& library_path() noexcept { return library_path_storage(); }
void set_library_path(std::string path) { library_path_storage() = std::move(path); }

}  // namespace core_api

void uBugCheck(const char* text) noexcept {
    if (auto* api = core_api::player()) api->bug_check(text);
    std::fputs(text, stderr);
    std::fputc('\n', stderr);
    std::abort();
}

}  // namespace ostrevan
