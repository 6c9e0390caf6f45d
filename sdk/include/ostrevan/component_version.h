#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// The component's description of itself. [main-thread]
class component_version : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{05B5A42F-12EA-4B98-9AEE-370E142245CD}");

    [[nodiscard]] virtual const char* name() const noexcept = 0;
    [[nodiscard]] virtual const char* version() const noexcept = 0;
    /// Lines separated by single line feeds.
    [[nodiscard]] virtual const char* about() const noexcept = 0;
    /// The name that the component's library file must have.
    [[nodiscard]] virtual const char* file_name() const noexcept = 0;
    /// The installation check, once after loading. False when the installation is wrong: the component writes the reason
    /// into the crash log, and the player tells the user.
    virtual bool test_installation() = 0;
};

}  // namespace ostrevan
