#include "server/worker.h"

#include "toolkit/log.h"

#include <csignal>
#include <exception>
#include <utility>

namespace agentd {

namespace {

// Where jobs come from several callers at once, a thread that does nothing else serves them faster.
constexpr std::chrono::milliseconds kCrowded{5};

} // namespace

Worker::Worker(std::size_t limit, Callers callers)
    : limit_(limit)
    , callers_(callers)
    , thread_([this] { run(); })
{
}

Worker::~Worker()
{
    if (thread_.joinable())
        static_cast<void>(stop(std::chrono::steady_clock::time_point::max()));
}

bool Worker::post(Job job)
{
    const std::lock_guard lock(mutex_);
    if (stopping_ || jobs_.size() >= limit_)
        return false;
    jobs_.push_back(std::move(job));
    changed_.notify_all();
    return true;
}

bool Worker::carryOut(const Job &job, const After &after)
{
    {
        std::unique_lock lock(mutex_);
        const auto now = std::chrono::steady_clock::now();
        if (isRunning_ || !jobs_.empty())
            crowdedUntil_ = now + kCrowded;
        if (callers_ == Callers::wait || now < crowdedUntil_ || stopping_) {
            lock.unlock();
            return post([job, after] {
                job();
                after(false);
            });
        }
        runUnlocked(lock, job);
    }
    after(true);
    return true;
}

bool Worker::stop(std::chrono::steady_clock::time_point deadline)
{
    std::deque<Job> dropped; // destroyed after the lock: a job may own whatever
    bool allEnded = false, threadEnded = false;
    {
        std::unique_lock lock(mutex_);
        stopping_ = true;
        dropped.swap(jobs_);
        changed_.notify_all();
        const auto hasEnded = [this] { return ended_ && !isRunning_; };
        if (deadline == std::chrono::steady_clock::time_point::max())
            changed_.wait(lock, hasEnded);
        else
            changed_.wait_until(lock, deadline, hasEnded);
        allEnded = hasEnded();
        threadEnded = ended_;
    }
    if (thread_.joinable())
        threadEnded ? thread_.join() : thread_.detach();
    return allEnded;
}

void Worker::run()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return stopping_ || (!isRunning_ && !jobs_.empty()); });
        if (stopping_)
            break;
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        runUnlocked(lock, std::move(job));
    }
    ended_ = true;
    changed_.notify_all();
}

void Worker::runUnlocked(std::unique_lock<std::mutex> &lock, Job job)
{
    isRunning_ = true;
    lock.unlock();
    try {
        job();
    } catch (const std::exception &failure) {
        log_error("agentd: a job failed: %s\n", failure.what());
    }
    job = nullptr; // it may own whatever
    lock.lock();
    isRunning_ = false;
    if (stopping_ || !jobs_.empty())
        changed_.notify_all();
}

} // namespace agentd
