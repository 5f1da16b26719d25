// Slows down whoever guesses passwords: says how long an attempt has to wait. It has no clock, no timer
// and no thread of its own, so that every front end waits in its own way.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace agentd {

class LoginGuard {
public:
    using Clock = std::chrono::steady_clock;
    using Duration = Clock::duration;

    // The first failures of an address cost nothing: people mistype.
    static constexpr unsigned kFreeFailures = 3;
    static constexpr Duration kFirstDelay = std::chrono::milliseconds(500); // doubled by each further failure
    static constexpr Duration kLongestDelay = std::chrono::seconds(8);
    static constexpr Duration kLongestWait = std::chrono::seconds(16); // an attempt beyond it is refused
    static constexpr Duration kForgetAfter = std::chrono::minutes(2);  // without a failure
    static constexpr std::size_t kMostAddresses = 1024;

    // An attempt from the address is about to be verified. Returns how long it has to wait before, or
    // nothing if so many wait already that this one must be refused at once. Attempts that come at the
    // same time queue up behind one another.
    std::optional<Duration> reserve(const std::string &address, Clock::time_point now);

    // The attempt failed: a wrong name or password.
    void noteFailure(const std::string &address, Clock::time_point now);

private:
    struct Record {
        unsigned failures = 0;
        Clock::time_point lastFailure;
        Clock::time_point nextAttempt;
    };
    static Duration delayAfter(unsigned failures);
    void makeRoom(Clock::time_point now);

    std::mutex mutex_;
    std::map<std::string, Record> records_;
};

} // namespace agentd
