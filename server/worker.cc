#include "server/worker.h"

#include "toolkit/log.h"

#include <csignal>
#include <exception>
#include <utility>

namespace agentd {

Worker::Worker(std::size_t limit)
    : limit_(limit)
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

bool Worker::stop(std::chrono::steady_clock::time_point deadline)
{
    std::deque<Job> dropped; // destroyed after the lock: a job may own whatever
    bool ended = false;
    {
        std::unique_lock lock(mutex_);
        stopping_ = true;
        dropped.swap(jobs_);
        changed_.notify_all();
        const auto hasEnded = [this] { return ended_; };
        if (deadline == std::chrono::steady_clock::time_point::max())
            changed_.wait(lock, hasEnded);
        else
            changed_.wait_until(lock, deadline, hasEnded);
        ended = ended_;
    }
    if (thread_.joinable())
        ended ? thread_.join() : thread_.detach();
    return ended;
}

void Worker::run()
{
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
        if (stopping_)
            break;
        {
            const Job job = std::move(jobs_.front());
            jobs_.pop_front();
            lock.unlock();
            carryOut(job);
        }
        lock.lock();
    }
    ended_ = true;
    changed_.notify_all();
}

void Worker::carryOut(const Job &job)
{
    try {
        job();
    } catch (const std::exception &failure) {
        log_error("agentd: a job failed: %s\n", failure.what());
    }
}

} // namespace agentd
