#include "player/index/index_writer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <semaphore>
#include <stdexcept>

namespace ostrevan::index {
namespace {

using namespace std::chrono_literals;

index_job seen(std::uint64_t key) { return seen_keys{1, 0, {key}}; }
bool loaded(const std::stop_token&) { return true; }

TEST(index_writer, keeps_what_fails_tries_again_by_itself_and_reports_once) {
    std::atomic<bool> is_full = true;
    std::atomic<int> reports = 0;
    std::size_t saved = 0;
    std::counting_semaphore<> attempts(0);
    index_writer writer({.load = loaded,
                         .save =
                             [&](std::span<const index_job> jobs) {
                                 attempts.release();
                                 if (is_full) throw std::runtime_error("disk full.");
                                 saved += jobs.size();
                             },
                         .report = [&](const std::string&) { ++reports; }},
                        1ms);
    writer.enqueue({seen(1)});
    for (int i = 0; i < 5; ++i) attempts.acquire();
    writer.enqueue({seen(2)});
    try {
        writer.flush();
        ADD_FAILURE() << "flush succeeded";
    } catch (const std::runtime_error& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("disk full. What has not been saved is kept")) << error.what();
    }
    EXPECT_TRUE(writer.pending());
    is_full = false;
    writer.flush();
    EXPECT_EQ(saved, 2U);
    EXPECT_EQ(reports, 1);
}

}  // namespace
}  // namespace ostrevan::index
