#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// The player's console: lines of text without a title or a question. [any-thread]
class console_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{072258B4-0FF4-4C04-98A0-0E817D693936}");

    virtual void print(const char* line) = 0;
};

}  // namespace ostrevan
