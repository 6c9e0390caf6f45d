#include "player/library/stored_infos.h"

#include <thread>

#include "tests/player/library/library_fixture.h"

namespace {

using namespace library_test;

constexpr std::size_t count = 700;  // of three blocks

class stored_infos_test : public library_files_test {
protected:
    void SetUp() override {
        library_files_test::SetUp();
        for (std::size_t i = 0; i < count; ++i) put(name_of(i), "title=" + std::to_string(i) + "\n");
        add_music();
        tracks_of_library_ = reopen().items();
        ASSERT_EQ(tracks_of_library_.size(), count);
    }

    static std::string name_of(std::size_t i) { return std::to_string(1000 + i) + ".mp3"; }
    [[nodiscard]] std::string title_of(std::size_t i) const {
        const auto info = tracks_of_library_[i]->info();
        return info ? std::string(info->info().meta_value(0, 0)) : "none";
    }

    std::vector<track_ptr> tracks_of_library_;
};

TEST_F(stored_infos_test, are_found_in_any_order_by_all_threads_and_keep_their_serials) {
    std::set<std::uint64_t> serials;
    for (const auto& track : tracks_of_library_) serials.insert(track->info_serial());
    EXPECT_EQ(serials.size(), count);
    const auto read = [&] {
        for (std::size_t i = 0; i < 5 * count; ++i) {
            const auto which = i * 271 % count;
            ASSERT_EQ(title_of(which), std::to_string(which));
            ASSERT_EQ(tracks_of_library_[which]->info()->serial(), tracks_of_library_[which]->info_serial());
        }
    };
    std::jthread other(read);
    read();
}

TEST_F(stored_infos_test, of_files_that_are_changed_or_gone_since_the_start_are_those_of_the_start) {
    put(name_of(300), "title=new\n");
    put("10005.mp3", "title=between\n");
    fs::remove(music_ / name_of(5));
    rescan();
    ASSERT_EQ(changes_.edited.size(), 1U);
    EXPECT_EQ(changes_.edited[0].before->info().meta_value(0, 0), "300");
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(title_of(i), i == 300 ? "new" : std::to_string(i));
}

TEST_F(stored_infos_test, that_are_damaged_are_missing_and_the_others_are_not) {
    change_database("UPDATE tracks SET info = x'02' WHERE file = 2; DELETE FROM tracks WHERE file = 4");
    tracks_of_library_ = reopen().items();
    std::size_t missing = 0;
    for (const auto& track : tracks_of_library_) missing += track->info() ? 0 : 1;
    EXPECT_EQ(missing, 1U);
}

}  // namespace
