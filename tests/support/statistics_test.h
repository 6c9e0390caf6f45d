#pragma once

#include <gtest/gtest.h>

#include "quorvel/common/settings.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "tests/support/memory_player.h"

namespace support {

/// The component started in an in-memory player, with both settings at their defaults.
class statistics_test : public testing::Test {
protected:
    memory_player player;

    statistics_test() {
        quorvel::monitoring_enabled.set(true);
        quorvel::tag_sync_enabled.set(false);
        player.start();
        player.settle();
        player.index.refreshes.clear();
    }

    static std::uint64_t key_of(const ostrevan::metadb_handle_ptr& track) { return quorvel::KeyOf(*track).value(); }
    /// Stores a record as if it had always been there: no refresh is left behind.
    void put(const ostrevan::metadb_handle_ptr& track, const quorvel::t_playback_stats& record) {
        quorvel::PCDB::Update(key_of(track), [&](quorvel::t_playback_stats& stored) { stored = record; });
        player.index.refreshes.clear();
    }
    static quorvel::t_playback_stats stored(const ostrevan::metadb_handle_ptr& track) {
        return quorvel::PCDB::GetByKey(key_of(track));
    }
    /// A track keyed by its title, with this rating.
    memory_track_ptr rated(const char* title, std::uint32_t rating) {
        auto track = make_track(std::string("/music/") + title, {{"artist", "a"}, {"title", title}});
        put(track, {.rating = rating});
        return track;
    }
};

}  // namespace support
