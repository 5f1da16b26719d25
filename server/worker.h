// One thread that carries out jobs in the order they came, behind a queue of bounded length.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace agentd {

// Work that may block for long (callbacks that wait for a daemon, password hashes) runs here, so that the
// threads that serve connections never wait.
class Worker {
public:
    using Job = std::function<void()>;

    // At most `limit` jobs wait behind the one that runs.
    explicit Worker(std::size_t limit);
    ~Worker(); // waits for the running job unless stop() gave up on it
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    // False: the queue is full or the worker was stopped, and the job was not taken.
    // A job answers for its own exceptions; one that escapes is logged.
    [[nodiscard]] bool post(Job job);

    // Drops the waiting jobs and waits for the running one, at most until `deadline`.
    // False: it is still running; the thread is then abandoned, and the process has to end without
    // destroying what the job uses.
    [[nodiscard]] bool stop(std::chrono::steady_clock::time_point deadline);

private:
    void run();
    static void carryOut(const Job &job);

    const std::size_t limit_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> jobs_;
    bool stopping_ = false;
    bool ended_ = false;
    std::thread thread_; // last: it uses everything above
};

} // namespace agentd
