#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// Told once for every track that the player has decided to count as played.
class playback_statistics_collector : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{EA2AC95D-CD9B-48E0-B18B-55E2F45E73A1}");

    /// [any-thread]
    virtual void on_item_played(const metadb_handle_ptr& track) = 0;
};

}  // namespace ostrevan
