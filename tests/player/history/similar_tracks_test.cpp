#include "player/history/similar_tracks.h"

#include <gtest/gtest.h>

namespace ostrevan::history {
namespace {

TEST(similar_tracks, share_two_parts_when_folded_and_differ_little_in_the_third) {
    const std::vector<track_name> library{{"Björk", "Début", "Venus as a Boy"},     // 0
                                          {"Bjork", "Debut", "Venus As a Boi"},     // 1
                                          {"Björk", "Début", "Human Behaviour"},    // 2
                                          {"Björk", "Greatest", "Venus as a Boy"},  // 3
                                          {"Sugar", "Début", "Venus as a Boy"},     // 4
                                          {"", "", "Intro"},                        // 5
                                          {"Björk feat. X", "Début", "Big Time"}};  // 6
    struct {
        track_name wanted;
        std::string places;  ///< with ! for an exact one
    } const cases[] = {
        {{"BJÖRK", "debut", "Venus as a boy."}, "0! 1 3 "},
        {{"Bjo\u0308rk", "Début", "Big Time"}, "6 "},
        {{"", "", "Intro"}, ""},
        {{"Björk", "Début", ""}, ""},
        {{"\xFF", "Début", "Big Time"}, ""},
    };
    const similar_tracks tracks(library);
    for (const auto& each : cases) {
        std::string places;
        for (const auto& [place, is_exact] : tracks.find(each.wanted, 9))
            places += std::to_string(place) + (is_exact ? "! " : " ");
        EXPECT_EQ(places, each.places) << each.wanted.title;
    }
    EXPECT_EQ(tracks.find(cases[0].wanted, 1).size(), 1U);
    EXPECT_EQ(similar_tracks(std::vector<track_name>(100'000, library[0])).find(library[0], 1).size(), 1U);
}

}  // namespace
}  // namespace ostrevan::history
