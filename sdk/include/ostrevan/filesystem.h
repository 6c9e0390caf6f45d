#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// One way of reaching files, named by the protocol before "://". A path without one is a local file. [any-thread]
class filesystem : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{6DFEBAEE-5B21-42EF-B6FA-70CC300DA853}");

    [[nodiscard]] virtual bool is_our_path(const char* path) const noexcept = 0;
    /// True when the location is not on this machine, so that nothing there may be rewritten.
    [[nodiscard]] virtual bool is_remote(const char* path) const noexcept = 0;
};

}  // namespace ostrevan
