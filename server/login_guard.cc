#include "server/login_guard.h"

#include <algorithm>

namespace agentd {

std::optional<LoginGuard::Duration> LoginGuard::reserve(const std::string &address, Clock::time_point now)
{
    const std::lock_guard lock(mutex_);
    const auto found = records_.find(address);
    if (found == records_.end())
        return Duration::zero();
    Record &record = found->second;
    if (now - record.lastFailure > kForgetAfter) {
        records_.erase(found);
        return Duration::zero();
    }
    const auto turn = std::max(now, record.nextAttempt);
    if (turn - now > kLongestWait)
        return std::nullopt;
    record.nextAttempt = turn + delayAfter(record.failures);
    return turn - now;
}

void LoginGuard::noteFailure(const std::string &address, Clock::time_point now)
{
    const std::lock_guard lock(mutex_);
    if (!records_.contains(address))
        makeRoom(now);
    Record &record = records_[address];
    ++record.failures;
    record.lastFailure = now;
    record.nextAttempt = std::max(record.nextAttempt, now + delayAfter(record.failures));
}

LoginGuard::Duration LoginGuard::delayAfter(unsigned failures)
{
    if (failures <= kFreeFailures)
        return Duration::zero();
    const unsigned doublings = std::min(failures - kFreeFailures - 1, 16U);
    return std::min<Duration>(kFirstDelay * (1U << doublings), kLongestDelay);
}

// The table stays bounded however many addresses somebody has: the one that failed longest ago goes.
void LoginGuard::makeRoom(Clock::time_point now)
{
    std::erase_if(records_, [&](const auto &entry) { return now - entry.second.lastFailure > kForgetAfter; });
    if (records_.size() < kMostAddresses)
        return;
    records_.erase(std::min_element(records_.begin(), records_.end(), [](const auto &a, const auto &b) {
        return a.second.lastFailure < b.second.lastFailure;
    }));
}

} // namespace agentd
