#pragma once

#include <atomic>
#include <mutex>

#include "nuv/guid.h"
#include "ostrevan/service.h"

namespace ostrevan {

/// The player's configuration: small values under identifiers, kept in the profile. A value set is on disk before the player
/// ends; setting the value that is stored already costs nothing. [any-thread]
class configuration_store : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{BAB6BC21-2095-431D-9084-33FB235426DF}");

    [[nodiscard]] virtual bool get_bool(const nuv::guid& id, bool fallback) const = 0;
    /// Throws when the configuration cannot be written.
    virtual void set_bool(const nuv::guid& id, bool value) = 0;
};

/// A setting of a component that the player reads at start and writes back at shutdown. Variables are static objects, linked
/// into one list while the module is loaded.
class config_variable {
public:
    [[nodiscard]] const nuv::guid& id() const noexcept { return id_; }
    [[nodiscard]] config_variable* next() const noexcept { return next_; }

    /// Takes the stored value, once; later calls change nothing. [main-thread]
    virtual void load() = 0;
    /// Hands the current value to the store. [main-thread]
    virtual void save() = 0;

    /// Start of this module's list, in no promised order.
    static config_variable* first() noexcept;

    config_variable(const config_variable&) = delete;
    config_variable& operator=(const config_variable&) = delete;

protected:
    explicit config_variable(const nuv::guid& id) noexcept;
    ~config_variable() = default;

private:
    nuv::guid id_;
    config_variable* next_;
};

/// A boolean setting. The first read fetches the stored value, or the default, exactly once; later reads are one atomic
/// load. A value that could not be read is not written back.
class cfg_bool final : public config_variable {
public:
    cfg_bool(const nuv::guid& id, bool fallback) noexcept : config_variable(id), fallback_(fallback), value_(fallback) {}

    /// [any-thread]
    [[nodiscard]] bool get() const;
    /// Changes the value and the store together, or neither: throws what the store throws. [main-thread]
    void set(bool value);

    void load() override;
    void save() override;

private:
    const bool fallback_;
    mutable std::once_flag loaded_;
    mutable std::atomic<bool> known_ = false;  ///< the value is that of the store
    mutable std::atomic<bool> value_;
};

}  // namespace ostrevan
