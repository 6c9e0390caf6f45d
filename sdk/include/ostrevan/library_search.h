#pragma once

#include "ostrevan/service.h"

namespace ostrevan {

/// The media library's search window. [main-thread]
class library_search : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{E1C8C0F2-3B57-4F0A-9A35-6B1A0D4A7C93}");

    /// Shows the tracks that match a query of the library's query language. Throws when the query has a mistake or nothing
    /// can be shown.
    virtual void show(const char* query) = 0;
};

}  // namespace ostrevan
