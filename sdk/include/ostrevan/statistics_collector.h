#pragma once

#include <functional>

#include "ostrevan/track.h"

namespace ostrevan {

/// Called once for every track that the player counts as played.
class playback_statistics_collector : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{EA2AC95D-CD9B-48E0-B18B-55E2F45E73A1}");

    /// [any-thread]
    virtual void on_item_played(const metadb_handle_ptr& track) = 0;
};

/// What became of a play.
enum class play_outcome : unsigned {
    counted,   ///< written; the player tells the user once it is on disk
    left_out,  ///< on purpose: a setting, or a track without a key
    failed,
};

/// Extension of a collector, found by `service_query`, that reports what became of each play. The player calls a play
/// counted only when a collector has reported so.
class playback_statistics_outcome : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{3D2B6C54-7F0A-4E53-9D0B-61C4B9F0A7E2}");

    /// `reason` tells the user why a play was not counted: a clause without a full stop; null when it was. Valid during the
    /// call.
    using reply_t = std::function<void(play_outcome outcome, const char* reason)>;

    /// Called instead of the collector's method. Call `reply` once, during the call or in a callback posted to the main
    /// thread; later calls change nothing. [main-thread]
    virtual void on_item_played(const metadb_handle_ptr& track, reply_t reply) = 0;
};

}  // namespace ostrevan
