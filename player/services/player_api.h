#pragma once

#include <atomic>
#include <string>
#include <utility>

#include "ostrevan/component.h"
#include "ostrevan/core_api.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/services/crash_log_service.h"

namespace ostrevan::services {

/// The player's side of the handshake, all that components see before they know any service.
class player_api_impl final : public player_api {
public:
    player_api_impl(core::main_loop& loop, core::service_registry& services, crash_log_service_impl& crash_log,
                    std::string profile, bool quiet)
        : loop_(loop), services_(services), crash_log_(crash_log), profile_(std::move(profile)), quiet_(quiet) {
        core_api::set_player(this);  // for the parts of the SDK that the player itself uses
    }
    ~player_api_impl() {
        if (core_api::player() == this) core_api::set_player(nullptr);
    }
    player_api_impl(const player_api_impl&) = delete;
    player_api_impl& operator=(const player_api_impl&) = delete;

    std::size_t service_count(const nuv::guid& service_class) const noexcept override {
        return services_.count(service_class);
    }
    service_base* service_at(const nuv::guid& service_class, std::size_t index) const noexcept override {
        return services_.at(service_class, index);
    }
    bool is_main_thread() const noexcept override { return loop_.on_main_thread(); }
    bool is_shutting_down() const noexcept override { return shutting_down_.load(); }
    bool is_quiet_mode() const noexcept override { return quiet_; }
    const char* profile_path() const noexcept override { return profile_.c_str(); }
    void* main_window() const noexcept override {
        core::check_main_thread("main_window");
        return nullptr;
    }
    [[noreturn]] void bug_check(const char* text) noexcept override;

    void begin_shutdown() noexcept { shutting_down_ = true; }
    [[nodiscard]] player_interface interface_block() noexcept { return {.api = this}; }

private:
    core::main_loop& loop_;
    core::service_registry& services_;
    crash_log_service_impl& crash_log_;
    const std::string profile_;
    const bool quiet_;
    std::atomic<bool> shutting_down_{false};
};

}  // namespace ostrevan::services
