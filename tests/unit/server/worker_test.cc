#include "server/worker.h"

#include <future>
#include <gmock/gmock.h>

namespace agentd {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

// A job that runs until it is let go.
struct Blocker {
    std::promise<void> began, release;
    Worker::Job job()
    {
        return [this] {
            began.set_value();
            release.get_future().wait();
        };
    }
};

TEST(Worker, TakesNoMoreThanItsBound)
{
    Blocker blocker;
    Worker worker(2);
    ASSERT_TRUE(worker.post(blocker.job()));
    blocker.began.get_future().wait();
    EXPECT_TRUE(worker.post([] {}));
    EXPECT_TRUE(worker.post([] {}));
    EXPECT_FALSE(worker.post([] {}));
    blocker.release.set_value();
}

TEST(Worker, SurvivesAFailingJob)
{
    std::promise<void> next;
    Worker worker(2);
    ASSERT_TRUE(worker.post([] { throw std::runtime_error("on purpose"); }));
    ASSERT_TRUE(worker.post([&] { next.set_value(); }));
    EXPECT_EQ(next.get_future().wait_for(10s), std::future_status::ready);
}

TEST(Worker, StopDropsWhatWaits)
{
    Blocker blocker;
    bool ran = false;
    Worker worker(100000); // never full here
    ASSERT_TRUE(worker.post(blocker.job()));
    blocker.began.get_future().wait();
    ASSERT_TRUE(worker.post([&] { ran = true; }));
    auto stopped = std::async(std::launch::async, [&] { return worker.stop(steady_clock::now() + 10s); });
    while (worker.post([] {})) // until the stop has begun
        std::this_thread::sleep_for(1ms);
    blocker.release.set_value();
    EXPECT_TRUE(stopped.get());
    EXPECT_FALSE(ran);
}

TEST(Worker, StopGivesUpAtItsDeadline)
{
    // Both outlive the thread that is given up, as in a process that ends.
    static auto *const blocker = new Blocker;
    static auto *const worker = new Worker(2);
    ASSERT_TRUE(worker->post(blocker->job()));
    blocker->began.get_future().wait();
    const auto start = steady_clock::now();
    EXPECT_FALSE(worker->stop(start + 50ms));
    EXPECT_LT(steady_clock::now() - start, 5s);
    blocker->release.set_value();
}

TEST(Worker, ItsCallersHelpWhereNothingWaits)
{
    Worker worker(2, Worker::Callers::help);
    std::thread::id thread;
    bool isCallers = false;
    ASSERT_TRUE(
        worker.carryOut([&] { thread = std::this_thread::get_id(); }, [&](bool is) { isCallers = is; }));
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_TRUE(isCallers);
}

TEST(Worker, OneCallerAtATimeIsHeld)
{
    Blocker blocker;
    Worker worker(2, Worker::Callers::help);
    std::thread held([&] { EXPECT_TRUE(worker.carryOut(blocker.job(), [](bool) {})); });
    blocker.began.get_future().wait();
    EXPECT_FALSE(worker.stop(steady_clock::now() + 20ms)) << "a job still runs";
    EXPECT_FALSE(worker.carryOut([] {}, [](bool) {}));
    blocker.release.set_value();
    held.join();
}

TEST(Worker, TheNextWaitsBehindAHeldCaller)
{
    Blocker blocker;
    Worker worker(1, Worker::Callers::help);
    std::thread held([&] { EXPECT_TRUE(worker.carryOut(blocker.job(), [](bool) {})); });
    blocker.began.get_future().wait();
    std::promise<bool> next;
    auto isCallers = next.get_future();
    EXPECT_TRUE(worker.carryOut([] {}, [&](bool is) { next.set_value(is); }));
    EXPECT_FALSE(worker.carryOut([] {}, [](bool) {})) << "no more than may wait";
    EXPECT_EQ(isCallers.wait_for(20ms), std::future_status::timeout);
    blocker.release.set_value();
    EXPECT_FALSE(isCallers.get());
    held.join();
}

} // namespace
} // namespace agentd
