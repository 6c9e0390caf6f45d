// Built with the component's own options for a processor with fused multiply and add: if the compiler may fuse, the
// difference of two equal times is the rounding error of one of them.
#include "quorvel/host/played_per_day.h"

#include <gtest/gtest.h>

TEST(played_per_day, of_equal_times_is_none_on_any_processor) {
    for (std::uint64_t time = 133'541'244'480'000'000; time < 133'541'244'480'001'000; ++time) {
        const volatile std::uint64_t same_time = time;  // or the compiler would see that nothing is left
        ASSERT_EQ(quorvel::played_per_day({.play_count = 5, .first_played = time, .last_played = same_time}), 0) << time;
    }
}
