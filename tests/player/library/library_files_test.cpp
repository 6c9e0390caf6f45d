#include "player/library/library_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "player/library/location_order.h"
#include "player/library/track.h"

namespace {

using namespace ostrevan::library;

TEST(library_files, agree_with_a_map_whatever_is_added_and_erased) {
    std::vector<std::string> paths;
    for (int i = 0; i < 3000; ++i) paths.push_back("/m/" + std::to_string(i));
    library_files files;
    std::map<std::string_view, std::int64_t> expected;
    std::mt19937 random(1);
    for (std::int64_t step = 1; step < 20'000; ++step) {
        const auto& path = paths[random() % paths.size()];
        if (const auto found = files.find(path); found != files.end()) {
            ASSERT_EQ(found->second.id, expected.at(path));
            files.erase(found);
            expected.erase(path);
        } else {
            ASSERT_FALSE(expected.contains(path));
            files.add(path)->second.id = expected[path] = step;
        }
    }
    std::map<std::string_view, std::int64_t> seen;
    for (const auto& [path, file] : files) seen.emplace(path, file.id);
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(files.size(), expected.size());
}

TEST(location_order, is_that_of_the_paths_however_folders_are_nested) {
    std::mt19937 random(2);
    for (const int folders : {1, 3, 200}) {
        std::vector<track_ptr> tracks;
        for (std::uint32_t i = 0; i < 500; ++i) {
            const auto folder = std::string("/m/") + (random() % 2 ? "a/" : "") + std::to_string(random() % folders) + "/";
            for (std::uint32_t k = 0; k < 3; ++k)
                tracks.push_back(ostrevan::service_new<track>(ostrevan::playable_location{folder + std::to_string(i), k}));
        }
        auto expected = tracks;
        const auto location = [](const track_ptr& each) -> const auto& { return each->location(); };
        std::ranges::sort(expected, {}, location);
        sort_by_location(tracks);
        EXPECT_EQ(tracks, expected) << folders;
    }
}

}  // namespace
