#pragma once

#include <cstddef>
#include <cstdint>

#include "nuv/guid.h"
#include "ostrevan/service.h"

#if defined(_WIN32)
#define OSTREVAN_EXPORT __declspec(dllexport)
#else
#define OSTREVAN_EXPORT __attribute__((visibility("default")))
#endif

namespace ostrevan {

class config_variable;

/// The handshake. Each side hands over a block that begins with plain data, and the other side compares that data before
/// it makes any virtual call through `api`.
///
/// The version changes with every change to an interface of this SDK, and with the toolchain when its ABI does: exceptions
/// and standard-library types cross the boundary.
inline constexpr std::uint32_t player_magic = 0x5652544F;     // "OTRV" in memory order
inline constexpr std::uint32_t component_magic = 0x504D434F;  // "OCMP" in memory order
inline constexpr std::uint32_t interface_version = 1;

/// What the player offers before any service is known.
class player_api {
public:
    /// Number of services registered under a class identifier, and one of them; null past the end. The reference belongs to
    /// the caller only when it adds one. [any-thread]
    virtual std::size_t service_count(const nuv::guid& service_class) const noexcept = 0;
    virtual service_base* service_at(const nuv::guid& service_class, std::size_t index) const noexcept = 0;

    /// [any-thread]
    virtual bool is_main_thread() const noexcept = 0;
    /// True from the moment the player has begun to end. [any-thread]
    virtual bool is_shutting_down() const noexcept = 0;
    /// True when the player was started without a front end that can show or ask anything. [any-thread]
    virtual bool is_quiet_mode() const noexcept = 0;
    /// Folder in which the player keeps the profile: databases, configuration. UTF-8, without a final separator, never
    /// changes. [any-thread]
    virtual const char* profile_path() const noexcept = 0;
    /// The window that owns dialogs, or null without one. [main-thread]
    virtual void* main_window() const noexcept = 0;

    /// Ends the process after writing the text into the crash log: a promise was broken in code. [any-thread]
    [[noreturn]] virtual void bug_check(const char* text) noexcept = 0;

protected:
    ~player_api() = default;
};

/// What a component offers.
class component_api {
public:
    struct service_entry {
        nuv::guid service_class;
        service_base* service;
    };

    /// Every service of the component, in the order of registration. They live until the process ends. [main-thread]
    virtual std::size_t service_count() const noexcept = 0;
    virtual service_entry service_at(std::size_t index) const noexcept = 0;

    /// The configuration variables that the player reads at start and writes back at shutdown. [main-thread]
    virtual std::size_t config_variable_count() const noexcept = 0;
    virtual config_variable& config_variable_at(std::size_t index) const noexcept = 0;

    /// Tells the component the path it was loaded from, once, before anything else. [main-thread]
    virtual void set_library_path(const char* utf8_path) = 0;

protected:
    ~component_api() = default;
};

struct player_interface {
    std::uint32_t magic;
    std::uint32_t version;
    player_api* api;
};

struct component_interface {
    std::uint32_t magic;
    std::uint32_t version;
    component_api* api;
};

/// The one symbol a component exports. It answers null when it cannot work with this player; the block it returns lives
/// until the process ends. [main-thread]
using get_interface_function = component_interface* (*)(const player_interface* player);
inline constexpr const char* entry_name = "ostrevan_get_interface";

/// The body of a component's entry: checks the player's block, keeps it and answers with the services and variables that the
/// component's static objects have registered.
component_interface* component_entry(const player_interface* player) noexcept;

}  // namespace ostrevan
