#include "quorvel/common/cpu_fifo.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/support/memory_player.h"

using mode = support::task_threads::mode;

TEST(cpu_fifo, runs_tasks_in_order_on_one_worker_and_drops_what_they_throw) {
    support::memory_player player;
    ostrevan::CPUFIFO queue;
    std::vector<int> order;
    for (int i = 0; i < 3; ++i)
        queue.add([&, i] {
            order.push_back(i);
            if (i == 1) queue.add([&] { order.push_back(3); });
            if (i == 1) throw std::runtime_error("dropped");
        });
    player.threads.run_waiting();
    EXPECT_EQ(order, (std::vector{0, 1, 2, 3})) << "what a task adds is run, too";
    EXPECT_EQ(player.threads.started, 1U);
    queue.add([&order] { order.push_back(4); });
    EXPECT_EQ(player.threads.started, 2U) << "a queue that ran empty starts a new worker";
    queue.finish();
    EXPECT_EQ(order.back(), 4) << "before the worker has begun";
    player.threads.run_waiting();
    EXPECT_EQ(order.size(), 5U);
}

TEST(cpu_fifo, never_runs_two_tasks_at_once_and_loses_none) {
    support::memory_player player;
    player.threads.how = mode::at_once;
    ostrevan::CPUFIFO queue;
    std::atomic<int> inside = 0;
    std::atomic<int> most = 0;
    std::atomic<int> ran = 0;
    constexpr int each = 2000;
    const auto feed = [&] {
        for (int i = 0; i < each; ++i)
            queue.add([&] {
                const int now = ++inside;
                if (ran == 0) std::this_thread::sleep_for(std::chrono::milliseconds(20));
                if (now > most) most = now;
                --inside;
                ++ran;
            });
    };
    std::thread other(feed);
    feed();
    other.join();
    queue.finish();
    EXPECT_EQ(ran, 2 * each) << "the task in hand is waited for";
    player.threads.join();
    EXPECT_EQ(most, 1);
}

TEST(cpu_fifo, keeps_a_task_for_which_no_thread_could_be_had) {
    support::memory_player player;
    ostrevan::CPUFIFO queue;
    std::vector<int> order;
    player.threads.how = mode::refuse;
    EXPECT_ANY_THROW(queue.add([&order] { order.push_back(1); }));
    player.threads.how = mode::on_demand;
    queue.add([&order] { order.push_back(2); });
    player.threads.run_waiting();
    EXPECT_EQ(order, (std::vector{1, 2}));
}
