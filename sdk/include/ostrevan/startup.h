#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// A step of the player's start. Stages run in ascending order: those up to 30, then the start-up notifications, then all
/// others.
class initialisation_stage : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{59BB30F6-1B8F-4FE0-8124-91EF034AEA58}");

    [[nodiscard]] virtual unsigned stage() const noexcept = 0;
    /// [main-thread]
    virtual void on_stage() = 0;
};

/// Called when the player has started and when it is about to end.
class startup_notification : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{253424ED-AF5D-4715-AF82-4D20FAF835B6}");

    /// [main-thread]
    virtual void on_startup() {}
    /// Services still work. Posted callbacks have run; a callback posted now or later never runs. [main-thread]
    virtual void on_shutdown() {}
};

}  // namespace ostrevan
