#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// What goes into the crash log along with the next crash. [any-thread]
class crash_log_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{1BB45E4A-03EA-4EE1-90A9-BB03D87D6EFB}");

    virtual void on_event(const char* line) = 0;
};

}  // namespace ostrevan
