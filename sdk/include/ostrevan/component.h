#pragma once

#include <cstddef>
#include <cstdint>

#include "nuv/guid.h"
#include "ostrevan/build.h"
#include "ostrevan/player_api.h"
#include "ostrevan/service.h"

#if defined(_WIN32)
#define OSTREVAN_EXPORT __declspec(dllexport)
#else
#define OSTREVAN_EXPORT __attribute__((visibility("default")))
#endif

namespace ostrevan {

class config_variable;

/// The handshake. Each side hands over a block of plain data and an object. The data is compared before the first virtual
/// call: the magic number, then the version, then the build. The magic number and the version stay where they are for good;
/// what follows them is only read when the versions are equal.
inline constexpr std::uint32_t player_magic = 0x5652544F;     // "OTRV" in memory order
inline constexpr std::uint32_t component_magic = 0x504D434F;  // "OCMP" in memory order

/// Raised when a part of this SDK changes its layout or its meaning. Version 3: `file_info` is one block of memory that
/// never changes, `file_info_builder` edits, and filters of files receive a builder.
inline constexpr std::uint32_t interface_version = 3;
/// Counts what was added since that version. An addition has an identifier of its own and is asked for, so a component and a
/// player of different revisions work together.
inline constexpr std::uint32_t interface_revision = 3;

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
    std::uint32_t magic = player_magic;
    std::uint32_t version = interface_version;
    std::uint32_t revision = interface_revision;
    build_fingerprint build = this_build();
    player_api* api = nullptr;
};

struct component_interface {
    std::uint32_t magic = component_magic;
    std::uint32_t version = interface_version;
    std::uint32_t revision = interface_revision;
    build_fingerprint build = this_build();
    component_api* api = nullptr;  ///< null when the component refuses the player
};

/// The one symbol a component exports. Returns null when the block is not that of a player; the block it returns lives until
/// the process ends. [main-thread]
using get_interface_function = component_interface* (*)(const player_interface* player);
inline constexpr const char* entry_name = "ostrevan_get_interface";

/// The body of a component's entry: checks the player's block, keeps it and returns the services and variables that the
/// component's static objects have registered. `build` is that of the caller, which may differ from the build of the library
/// that this function is in.
component_interface* component_entry(const player_interface* player, const build_fingerprint& build = own_build) noexcept;

}  // namespace ostrevan
