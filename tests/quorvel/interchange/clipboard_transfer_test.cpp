#include "quorvel/interchange/clipboard_transfer.h"

#include "ostrevan/exceptions.h"
#include "tests/support/statistics_test.h"

#ifdef __unix__
#include <sys/resource.h>
#endif

using support::moment;
using support::second;

namespace {

using ostrevan::metadb_handle_list;
using ostrevan::popup_message_v3;
using quorvel::t_playback_stats;

/// A selection that only states its length.
struct empty_selection final : nuv::list_base_const_t<ostrevan::metadb_handle_ptr> {
    explicit empty_selection(std::size_t size) : size_(size) {}
    std::size_t get_count() const noexcept override { return size_; }
    const ostrevan::metadb_handle_ptr& get_item(std::size_t) const override { throw std::logic_error("never read"); }
    std::size_t size_;
};

class clipboard_transfer : public support::statistics_test {
protected:
    metadb_handle_list from = support::make_tracks(3);
    metadb_handle_list to{rated("x", quorvel::rating_not_set), rated("y", quorvel::rating_not_set),
                          rated("z", quorvel::rating_not_set)};

    /// A block of `count` equal records.
    void set_block(std::uint32_t count, const t_playback_stats& record = {}) {
        std::vector<std::uint8_t> block;
        const auto append = [&](std::uint64_t value, unsigned size) {
            for (unsigned i = 0; i < size; ++i) block.push_back(static_cast<std::uint8_t>(value >> 8 * i));
        };
        append(count, 4);
        for (std::uint32_t i = 0; i < std::min(count, 10U); ++i) {
            for (const auto value : {record.play_count, record.first_played, record.last_played, record.added})
                append(value, 8);
            append(record.rating, 4);
        }
        block.resize(block.size() + 3);  // the clipboard may round sizes up
        player.clipboard.set(quorvel::clipboard_format, block);
    }
    std::string preview_of(std::uint32_t count, const t_playback_stats& record) {
        set_block(count, record);
        EXPECT_TRUE(quorvel::pasteStatistics(support::make_tracks(count)));
        return std::exchange(player.popups.questions(), {}).at(0).text;
    }
};

TEST_F(clipboard_transfer, copies_a_count_and_36_bytes_a_track) {
    put(from[0], {.play_count = 0x0102030405060708, .first_played = 2, .last_played = 3, .added = 4, .rating = 0xA1B2C3D4});
    quorvel::copyStatistics(from);
    const auto block = player.clipboard.bytes("{9B7A2C92-BC1E-4a96-BB97-B19884AB2141}");
    ASSERT_EQ(block.size(), 112U);
    const std::vector<std::uint8_t> first = {3, 0, 0, 0, 8, 7, 6, 5, 4, 3, 2, 1, 2, 0, 0, 0, 0,    0,    0,    0,
                                             3, 0, 0, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0xD4, 0xC3, 0xB2, 0xA1};
    EXPECT_EQ(std::vector(block.begin(), block.begin() + 40), first);
    EXPECT_EQ(std::count(block.begin() + 40, block.begin() + 72, 0), 32);
    EXPECT_EQ(std::count(block.begin() + 72, block.begin() + 76, 0xFF), 4) << "no rating";
}

TEST_F(clipboard_transfer, refuses_what_cannot_be_copied) {
    EXPECT_THROW(quorvel::copyStatistics(empty_selection(0x100000000)), nuv::exception_overflow);
    player.clipboard.block(true);
    EXPECT_ANY_THROW(quorvel::copyStatistics(from));
    player.clipboard.block(false);
    EXPECT_DEATH(std::thread([&] { quorvel::copyStatistics(from); }).join(), "^core_api::ensure_main_thread");
    EXPECT_DEATH(std::thread([&] { (void)quorvel::pasteStatistics(from); }).join(), "^core_api::ensure_main_thread");
}

TEST_F(clipboard_transfer, overwrites_by_position_after_ok) {
    const t_playback_stats record{.play_count = 1, .first_played = 2, .last_played = 3, .added = 4, .rating = 63};
    put(from[0], record);
    put(from[2], {.play_count = 9});
    put(to[0], {.play_count = 50, .added = 1, .rating = 234});
    put(to[1], {.play_count = 60});
    quorvel::copyStatistics(from);
    for (const unsigned answer : {popup_message_v3::answer_cancel, popup_message_v3::answer_ok}) {
        EXPECT_TRUE(quorvel::pasteStatistics(metadb_handle_list(to)));
        EXPECT_TRUE(question().starts_with("01 Playback Statistics: The following data"));
        EXPECT_EQ(stored(to[0]).play_count, 50U);
        player.popups.answer(answer);
    }
    EXPECT_EQ(stored(to[0]), record);
    EXPECT_EQ(stored(to[1]), t_playback_stats{}) << "unset values overwrite too";
    EXPECT_EQ(stored(to[2]).play_count, 9U);
    ASSERT_EQ(player.index.refreshes.size(), 1U);
    EXPECT_EQ(player.index.refreshes[0].size(), 3U);
    EXPECT_TRUE(player.tag_updates.requests.empty());
}

TEST_F(clipboard_transfer, writes_file_tags_of_local_tracks_when_wanted) {
    quorvel::tag_sync_enabled.set(true);
    const auto remote = support::make_track("http://host/a", {{"artist", "r"}, {"title", "t"}});
    set_block(2, {.play_count = 4});
    quorvel::pasteStatistics(metadb_handle_list{remote, to[0]});
    player.popups.answer(popup_message_v3::answer_ok);
    ASSERT_EQ(player.tag_updates.requests.size(), 1U);
    const auto& request = player.tag_updates.requests[0];
    EXPECT_EQ(request.tracks.items(), std::vector<ostrevan::metadb_handle_ptr>{to[0]});
    EXPECT_EQ(request.options, 0U);
    EXPECT_TRUE(request.notify);
    player.tag_updates.run_next();
    EXPECT_EQ(to[0]->info()->info(), support::make_info({{"artist", "a"}, {"title", "x"}, {"play_count", "4"}}));
}

TEST_F(clipboard_transfer, previews_five_records_and_counts_the_rest) {
    constexpr std::uint64_t earlier = 133'500'000'000'000'000;
    const std::string head = "The following data is about to be imported, overwriting your current playback statistics:\n\n";
    const t_playback_stats all{
        .play_count = 3, .first_played = moment, .last_played = moment + second, .added = earlier, .rating = 128};
    EXPECT_EQ(preview_of(1, all), head +
                                      "Item: t0\nPlayed 3 times, first: 2024-03-05 20:30:48, last: 2024-03-05 20:30:49, "
                                      "added: 2024-01-18 02:50:00, rating: ***\n\n");
    std::string items;
    for (const char* title : {"t0", "t1", "t2", "t3", "t4"})
        items += std::string("Item: ") + title + "\nPlayed 0 times, first: N/A, last: N/A, added: N/A, rating: N/A\n\n";
    EXPECT_EQ(preview_of(5, {}), head + items);
    EXPECT_EQ(preview_of(7, {}), head + items + "(2 more...)\n");

    const std::pair<std::uint32_t, const char*> ratings[] = {
        {42, "\n"}, {63, "*\n"}, {234, "*****\n"}, {255, "*****\n"}, {0xFFFFFFFE, "*****\n"}, {0x55555556, "\n"}};
    for (const auto& [rating, stars] : ratings)
        EXPECT_TRUE(preview_of(1, {.rating = rating}).ends_with(std::string("rating: ") + stars + "\n")) << rating;
}

TEST_F(clipboard_transfer, writes_nothing_from_a_block_that_does_not_fit) {
    EXPECT_FALSE(quorvel::pasteStatistics(to));
    set_block(2);
    EXPECT_FALSE(quorvel::pasteStatistics(to));
    EXPECT_EQ(
        player.popups.messages.at(0),
        (support::shown_message{"Clipboard contains information for 2 tracks. Please select a correct number of tracks "
                                "to paste information to.",
                                "Playback Statistics", 1}));
    set_block(3);
    const auto block = player.clipboard.bytes(quorvel::clipboard_format);
    for (std::size_t size = 4 + 3 * 36; size-- > 1;) {
        player.clipboard.set(quorvel::clipboard_format, std::span(block).first(size));
        EXPECT_THROW(quorvel::pasteStatistics(to), ostrevan_io::exception_io_data_truncation) << size;
    }
    player.clipboard.block(true);
    EXPECT_FALSE(quorvel::pasteStatistics(to));
    EXPECT_TRUE(player.popups.questions().empty());
    EXPECT_EQ(player.index.direct_writes + player.index.begun, 0U);
}

#if defined(__unix__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(clipboard_transfer, beeps_when_there_is_no_room_for_the_records) {
    set_block(0xFFFFFFFF);
    const rlimit limit{1U << 30, 1U << 30};
    const auto paste = [&] { return quorvel::pasteStatistics(empty_selection(0xFFFFFFFF)); };
    EXPECT_EXIT((setrlimit(RLIMIT_AS, &limit), std::_Exit(paste() || player.beeps.count != 1)), testing::ExitedWithCode(0),
                "");
}
#endif

}  // namespace
