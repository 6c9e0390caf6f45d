#include "quorvel/common/settings.h"

#include <gtest/gtest.h>

#include "tests/support/memory_player.h"

TEST(settings, are_read_once_and_written_through) {
    support::memory_player player;
    static ostrevan::cfg_bool stored_off{nuv::guid_of("{6F3B1B1E-8F0B-4C8B-9C2D-0C7C3B8E5A01}"), true};
    static ostrevan::cfg_bool never_stored{nuv::guid_of("{6F3B1B1E-8F0B-4C8B-9C2D-0C7C3B8E5A02}"), true};
    auto& store = player.configuration.values;
    store[stored_off.id()] = false;
    EXPECT_FALSE(stored_off.get());
    EXPECT_TRUE(never_stored.get());
    store[stored_off.id()] = true;
    stored_off.load();
    EXPECT_FALSE(stored_off.get()) << "the first read counts";
    stored_off.save();
    EXPECT_FALSE(store.at(stored_off.id()));
    never_stored.set(false);
    EXPECT_FALSE(never_stored.get());
    EXPECT_FALSE(store.at(never_stored.id()));
}

/// Only values that were read or set are written back at the end, never defaults in their place.
TEST(settings, that_the_store_failed_under_are_not_overwritten) {
    support::memory_player player;
    static ostrevan::cfg_bool unread{nuv::guid_of("{6F3B1B1E-8F0B-4C8B-9C2D-0C7C3B8E5A03}"), false};
    static ostrevan::cfg_bool unset{nuv::guid_of("{6F3B1B1E-8F0B-4C8B-9C2D-0C7C3B8E5A04}"), true};
    auto& store = player.configuration.values;
    store = {{unread.id(), true}, {unset.id(), false}};
    player.configuration.fail = true;
    EXPECT_FALSE(unread.get()) << "the default";
    EXPECT_ANY_THROW(unset.set(true));
    player.configuration.fail = false;
    unread.save();
    unset.save();
    EXPECT_EQ(store, (std::map<nuv::guid, bool>{{unread.id(), true}, {unset.id(), false}}));
    EXPECT_FALSE(unset.get());
    unread.set(false);
    unread.save();
    EXPECT_FALSE(store.at(unread.id()));
}
