#include "player/core/main_loop.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "player/services/thread_service.h"

namespace ostrevan::core {
namespace {

class task_of : public thread_task {
public:
    explicit task_of(std::function<void()> work) : work_(std::move(work)) {}
    void run() override { work_(); }

private:
    std::function<void()> work_;
};

TEST(main_loop, runs_in_order_of_posting_and_survives_a_task_that_throws) {
    std::vector<int> order;
    std::string failure;
    main_loop loop([&](const char* what) { failure = what; });
    loop.post([&] {
        order.push_back(1);
        loop.post([&] { order.push_back(3); });
        throw std::runtime_error("broken");
    });
    loop.post([&] { order.push_back(2); });
    loop.run_until_idle();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
    EXPECT_EQ(failure, "broken");
}

TEST(main_loop, is_not_idle_while_a_worker_runs) {
    std::vector<std::string> failures;
    main_loop loop([&](const char* what) { failures.emplace_back(what); });
    service_uncounted_t<services::thread_service_impl> threads(loop);
    int done = 0;
    for (int i = 0; i < 20; ++i)
        threads.start(service_new<task_of>([&] {
            EXPECT_FALSE(loop.on_main_thread());
            loop.post([&] { ++done; });
        }));
    threads.start(service_new<task_of>([] { throw std::runtime_error("lost"); }));
    loop.run_until_idle();
    EXPECT_EQ(done, 20);
    EXPECT_EQ(failures, std::vector<std::string>{"A worker of core_tests failed: lost"});
}

}  // namespace
}  // namespace ostrevan::core
