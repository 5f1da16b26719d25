// Carries out jobs one by one in the order they came, behind a queue of bounded length.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace agentd {

// Work that may block for long (callbacks that wait for a daemon, password hashes) runs on a thread of its
// own here, so that the threads that serve connections don't wait.
class Worker {
public:
    using Job = std::function<void()>;
    // Whether a caller may carry a job out itself. One of them is then held as long as that takes, never two.
    enum class Callers { wait, help };

    // At most `limit` jobs wait behind the one that runs.
    explicit Worker(std::size_t limit, Callers callers = Callers::wait);
    ~Worker(); // waits for the running job unless stop() gave up on it
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    // False: the queue is full or the worker was stopped, and the job was not taken.
    // A job answers for its own exceptions; one that escapes is logged.
    [[nodiscard]] bool post(Job job);

    // The same; where callers help, a job that would not have to wait is done when this returns, which saves
    // a change of threads and back. `after` follows the job on its thread, which may be the caller's: then
    // the next job need not wait for it, and it may take its time.
    using After = std::function<void(bool isCallers)>;
    [[nodiscard]] bool carryOut(const Job &job, const After &after);

    // Drops the waiting jobs and waits for the running one, at most until `deadline`.
    // False: it is still running; its thread is then abandoned, and the process has to end without
    // destroying what the job uses.
    [[nodiscard]] bool stop(std::chrono::steady_clock::time_point deadline);

private:
    void run();
    void runUnlocked(std::unique_lock<std::mutex> &lock, Job job);

    const std::size_t limit_;
    const Callers callers_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> jobs_;
    std::chrono::steady_clock::time_point crowdedUntil_;
    bool isRunning_ = false; // a job, on whatever thread
    bool stopping_ = false;
    bool ended_ = false; // the thread
    std::thread thread_; // last: it uses everything above
};

} // namespace agentd
