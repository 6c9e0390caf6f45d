#pragma once

#include <gtest/gtest.h>

#include "ostrevan/context_menu.h"
#include "quorvel/common/settings.h"
#include "quorvel/store/key.h"
#include "quorvel/store/pcdb.h"
#include "tests/support/memory_player.h"

namespace support {

// In units of 100 ns since 1601, as records have them.
inline constexpr std::uint64_t second = 10'000'000, day = 86'400 * second;
inline constexpr std::uint64_t moment = 133'541'244'480'000'000;  ///< 2024-03-05 15:00:48 UTC

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
    /// Stores a record as if it had always existed: no refresh remains.
    void put(const ostrevan::metadb_handle_ptr& track, const quorvel::t_playback_stats& record) {
        quorvel::PCDB::Update(key_of(track), [&](quorvel::t_playback_stats& stored) { stored = record; });
        player.index.refreshes.clear();
    }
    static quorvel::t_playback_stats stored(const ostrevan::metadb_handle_ptr& track) {
        return quorvel::PCDB::GetByKey(key_of(track));
    }
    /// The group of the context menu that holds a command, and the command's index in it.
    std::pair<ostrevan::context_menu_item*, std::size_t> find_command(const std::string& name) {
        for (std::size_t i = 0;; ++i) {
            auto& group = player.component_service<ostrevan::context_menu_item>(i);
            for (std::size_t index = 0; index < group.get_item_count(); ++index)
                if (group.get_item_name(index) == name) return {&group, index};
        }
    }
    /// The one open question: "STYLE TITLE: TEXT", the style in hexadecimal.
    std::string question() {
        if (player.popups.questions().size() != 1) return std::to_string(player.popups.questions().size()) + " questions";
        const auto& open = player.popups.questions()[0];
        EXPECT_EQ(open.parent, player.main_window());
        return "0123456789"[open.style / 16 % 10] +
               ("0123456789"[open.style % 16 % 10] + (' ' + open.title) + ": " + open.text);
    }
    /// A track keyed by its title, with this rating.
    memory_track_ptr rated(const char* title, std::uint32_t rating) {
        auto track = make_track(std::string("/music/") + title, {{"artist", "a"}, {"title", title}});
        put(track, {.rating = rating});
        return track;
    }
};

}  // namespace support
