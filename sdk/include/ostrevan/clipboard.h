#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "ostrevan/service.h"

namespace ostrevan {

/// The clipboard on systems without one of their own: one block of bytes in one named format. It outlives the process, and
/// only its user can read it. [main-thread]
class clipboard_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{11A59756-CFFD-46CD-881D-D2391B4EF0A1}");

    [[nodiscard]] virtual bool has_format(const char* format) const = 0;
    /// False when the clipboard holds nothing in that format or cannot be read.
    virtual bool get(const char* format, std::vector<std::uint8_t>& bytes) const = 0;
    /// Replaces the contents of the clipboard. Throws when they cannot be kept.
    virtual void set(const char* format, std::span<const std::uint8_t> bytes) = 0;
};

/// The sound that says "not possible". [main-thread]
class beep_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{6AA07FE9-4584-4E0F-A5ED-5652C5BE5331}");

    virtual void beep() = 0;
};

}  // namespace ostrevan
