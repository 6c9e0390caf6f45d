#include "player/core/job.h"

#include <gtest/gtest.h>

#include "player/core/main_loop.h"
#include "player/system/interrupt.h"

namespace ostrevan::core {
namespace {

/// Runs a command on a thread of its own, and the loop meanwhile.
void run_beside(main_loop& loop, const job_ptr& of, const std::function<void()>& command) {
    std::thread thread([&, busy = std::make_unique<main_loop::activity>(loop)]() mutable {
        const job::scope scope(of);
        of->take_over();
        command();
        busy.reset();
    });
    loop.run_until_idle();
    thread.join();
}

TEST(job, is_idle_when_all_it_began_is_done_and_waits_for_nobody_else) {
    std::string said;
    main_loop loop([&](const char* what) { said += what; });
    const auto mine = std::make_shared<job>(), other = std::make_shared<job>();
    std::optional<main_loop::activity> question;
    {
        const job::scope scope(other);
        question.emplace(loop);
    }
    run_beside(loop, mine, [&] {
        auto work = std::make_shared<main_loop::activity>(loop);
        loop.post([&, work = std::move(work)] {
            EXPECT_EQ(job::current(), mine);
            loop.post([&] {
                said += "last ";
                throw std::runtime_error("broken ");
            });
        });
        mine->wait_until_idle();
        EXPECT_EQ(said, "last broken ");
        loop.call([&] { question.reset(); });
        EXPECT_EQ(job::current(), mine);
    });
    EXPECT_EQ(job::current(), nullptr);
}

TEST(job, serves_its_own_thread_before_a_call_returns) {
    main_loop loop([](const char*) {});
    const auto mine = std::make_shared<job>();
    run_beside(loop, mine, [&] {
        const auto here = std::this_thread::get_id();
        std::string order;
        const auto returned = loop.call([&] {
            EXPECT_TRUE(loop.on_main_thread());
            for (const char* name : {"a", "b"})
                mine->run_on_own_thread([&, name] {
                    EXPECT_EQ(std::this_thread::get_id(), here);
                    mine->run_on_own_thread([&] { order += name; });
                });
            return 7;
        });
        EXPECT_EQ(order + std::to_string(returned), "ab7");
        EXPECT_THROW(loop.call([] { throw std::out_of_range("x"); }), std::out_of_range);
    });
    EXPECT_EQ(loop.call([] { return 8; }), 8);
}

TEST(job, stops_alone_or_with_the_process) {
    std::atomic<bool> flag = false;
    const auto mine = std::make_shared<job>(), other = std::make_shared<job>(flag);
    mine->stop() = true;
    for (const auto& [of, is_one] : {std::pair{mine, true}, {other, false}, {job_ptr(), false}}) {
        const job::scope scope(of);
        EXPECT_EQ(is_stopping(), is_one);
    }
    flag = system::interrupted() = true;
    for (const auto& of : {other, job_ptr()}) {
        const job::scope scope(of);
        EXPECT_TRUE(is_stopping());
    }
    system::interrupted() = false;
}

}  // namespace
}  // namespace ostrevan::core
