#pragma once

#include <cstddef>

#include "nuv/guid.h"
#include "ostrevan/service.h"

namespace ostrevan {

/// The player, before any of its services is known.
class player_api {
public:
    /// Number of services registered under a class identifier, and one of them; null past the end. The reference belongs to
    /// the caller only when it adds one. [any-thread]
    virtual std::size_t service_count(const nuv::guid& service_class) const noexcept = 0;
    virtual service_base* service_at(const nuv::guid& service_class, std::size_t index) const noexcept = 0;

    /// [any-thread]
    virtual bool is_main_thread() const noexcept = 0;
    /// True once the player has begun to end. [any-thread]
    virtual bool is_shutting_down() const noexcept = 0;
    /// True when the player was started without a front end that can show or ask anything. [any-thread]
    virtual bool is_quiet_mode() const noexcept = 0;
    /// Folder in which the player keeps the profile: databases, configuration. UTF-8, without a final separator, never
    /// changes. [any-thread]
    virtual const char* profile_path() const noexcept = 0;
    /// The window that owns dialogs, or null without one. [main-thread]
    virtual void* main_window() const noexcept = 0;

    /// Ends the process after writing the text into the crash log, because code broke a promise. [any-thread]
    [[noreturn]] virtual void bug_check(const char* text) noexcept = 0;

protected:
    ~player_api() = default;
};

}  // namespace ostrevan
