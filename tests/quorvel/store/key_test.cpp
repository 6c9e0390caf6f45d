#include "quorvel/store/key.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/support/memory_player.h"

namespace {

struct field {
    std::string name;
    std::vector<std::string> values;
};

struct vector {
    std::string name;
    std::size_t mapping;  ///< position in the mapping table
    std::string path;
    double length;
    std::vector<field> fields;
    std::uint64_t key;
};

const std::vector<vector>& vectors() {
    static const std::vector<vector> all = {
#include "tests/quorvel/store/key_vectors.inc"
    };
    return all;
}

ostrevan::file_info info_of(const vector& v) {
    ostrevan::file_info_builder info;
    for (const auto& [name, values] : v.fields) info.meta_set_values(name, values);
    info.length = v.length;
    return info.build();
}

}  // namespace

TEST(key, agrees_with_the_vectors_under_every_mapping) {
    support::memory_player player;
    player.start();
    constexpr std::array mappings = {quorvel::title_mapping_guid, quorvel::legacy_track_mapping_guid,
                                     quorvel::repeated_track_mapping_guid};
    EXPECT_FALSE(quorvel::FindMapping(nuv::guid{}));
    for (const auto& v : vectors()) {
        const auto mapping = quorvel::FindMapping(mappings.at(v.mapping));
        ASSERT_TRUE(mapping);
        EXPECT_EQ(mapping->key_of(info_of(v), {v.path, 0}), v.key) << v.name << ", mapping " << v.mapping;
        EXPECT_EQ(mapping->key_of(info_of(v), {v.path, 7}), v.key) << v.name << ": the subsong takes no part";
        if (v.mapping != 0) continue;
        const auto track = support::make_track(v.path, {});
        track->publish(info_of(v));
        for (const char* when : {"", ", remembered"}) EXPECT_EQ(quorvel::KeyOf(*track), v.key) << v.name << when;
    }
}

TEST(key, is_not_that_of_tags_that_have_been_edited_since) {
    support::memory_player player;
    player.start();
    const auto track = support::make_track("/a", {{"artist", "a"}, {"title", "before"}});
    const auto before = quorvel::KeyOf(*track);
    track->publish(support::make_info({{"artist", "a"}, {"title", "after"}}));
    EXPECT_NE(quorvel::KeyOf(*track), before);
    track->forget_info();
    EXPECT_EQ(quorvel::KeyOf(*track), std::nullopt);
}
