#pragma once

#include <string>

#include "ostrevan/track.h"

namespace ostrevan {

/// The player's title formatting. [any-thread]
class titleformat_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{007D7AC5-035A-4D3C-939C-DB33151CA3AB}");

    /// The text of a script for one track. Throws when the script has a mistake.
    [[nodiscard]] virtual std::string format(metadb_handle& track, const char* script) const = 0;
};

}  // namespace ostrevan
