#include "player/library/track_table.h"

#include <gtest/gtest.h>

#include <thread>

#include "ostrevan/file_info_builder.h"

namespace {

using namespace ostrevan::library;

ostrevan::file_info info_of_length(double seconds) {
    ostrevan::file_info_builder info;
    info.length = seconds;
    return info.build();
}

TEST(track, shows_one_whole_snapshot_after_the_other_to_all_threads) {
    const auto handle = ostrevan::service_new<track>(ostrevan::playable_location{"/m/a", 0});
    std::jthread writer([&](const std::stop_token& stop) {
        for (double i = 1; !stop.stop_requested(); ++i) {
            handle->publish(make_snapshot(info_of_length(i)));
        }
    });
    const auto read = [&] {
        double last = 0;
        for (int i = 0; i < 20000; ++i) {
            const auto info = handle->info();
            const double now = info ? info->info().length() : 0;
            EXPECT_GE(now, last);
            last = now;
        }
    };
    std::jthread other(read);
    read();
    other.join();
    writer.request_stop();
    writer.join();
}

}  // namespace
