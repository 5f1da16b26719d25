#include "server/login_guard.h"

#include <gmock/gmock.h>

namespace agentd {
namespace {

using namespace std::chrono_literals;

class LoginGuardTest : public ::testing::Test {
protected:
    void failTimes(unsigned count, const std::string &address = "a")
    {
        for (unsigned i = 0; i < count; ++i)
            guard.noteFailure(address, now);
    }
    LoginGuard guard;
    LoginGuard::Clock::time_point now{1h};
};

TEST_F(LoginGuardTest, SlowsDownMoreWithEachFailureUpToALimit)
{
    failTimes(LoginGuard::kFreeFailures); // people mistype
    EXPECT_EQ(guard.reserve("a", now), 0s);
    failTimes(1);
    const auto first = guard.reserve("a", now).value();
    EXPECT_EQ(first, LoginGuard::kFirstDelay);
    EXPECT_EQ(guard.reserve("b", now), 0s);
    failTimes(1);
    EXPECT_GE(guard.reserve("a", now).value(), 2 * first);
    failTimes(100);
    now += LoginGuard::kLongestDelay * 2;
    failTimes(1);
    EXPECT_EQ(guard.reserve("a", now), LoginGuard::kLongestDelay);
}

TEST_F(LoginGuardTest, HasAttemptsAtTheSameTimeWaitForOneAnother)
{
    failTimes(LoginGuard::kFreeFailures + 1);
    const auto first = guard.reserve("a", now).value(), second = guard.reserve("a", now).value();
    EXPECT_EQ(second - first, LoginGuard::kFirstDelay);
    int accepted = 2;
    while (guard.reserve("a", now))
        ASSERT_LT(++accepted, 1000);
    EXPECT_EQ(accepted, LoginGuard::kLongestWait / LoginGuard::kFirstDelay);
}

TEST_F(LoginGuardTest, ForgetsInTheEnd)
{
    failTimes(50);
    now += LoginGuard::kForgetAfter + 1s;
    EXPECT_EQ(guard.reserve("a", now), 0s);
    guard.noteFailure("a", now);
    EXPECT_EQ(guard.reserve("a", now), 0s);
}

TEST_F(LoginGuardTest, ForgetsTheOldestOfTooManyAddressesOnly)
{
    failTimes(LoginGuard::kFreeFailures + 1, "first");
    now += 1s;
    failTimes(LoginGuard::kFreeFailures + 4, "second");
    for (std::size_t i = 0; i < LoginGuard::kMostAddresses - 1; ++i)
        guard.noteFailure(std::to_string(i), now);
    EXPECT_EQ(guard.reserve("first", now), 0s);
    EXPECT_GT(guard.reserve("second", now).value(), 0s);
}

} // namespace
} // namespace agentd
