#include "switchsim/socket_server.h"
#include "switchsim/switch.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <shared_mutex>

namespace switchsim {
namespace {

using backend::Deadline;

// Runs the request on the caller's thread: no copy, no switch of threads.
class LocalTransport : public backend::Transport {
public:
    explicit LocalTransport(Simulator &simulator)
        : simulator_(simulator)
    {
    }

    std::optional<backend::Bytes> call(backend::BytesView request, Deadline deadline) override
    {
        const std::shared_lock lock(inUse_);
        Patience patience(*this, deadline);
        return isClosed() ? std::nullopt : simulator_.serve(request, patience);
    }

    void close() // cuts delays short and returns when the last call is through
    {
        {
            const std::lock_guard lock(mutex_);
            closed_ = true;
        }
        closing_.notify_all();
        const std::lock_guard lock(inUse_);
    }

private:
    class Patience : public Caller {
    public:
        Patience(LocalTransport &transport, Deadline deadline)
            : transport_(transport)
            , deadline_(deadline)
        {
        }
        bool wait(std::chrono::milliseconds time) override
        {
            const auto until = std::chrono::steady_clock::now() + time;
            return !transport_.isClosedBefore(std::min<Deadline>(until, deadline_)) && until < deadline_;
        }

    private:
        LocalTransport &transport_;
        Deadline deadline_;
    };

    bool isClosed()
    {
        const std::lock_guard lock(mutex_);
        return closed_;
    }

    bool isClosedBefore(Deadline time)
    {
        std::unique_lock lock(mutex_);
        return closing_.wait_until(lock, time, [this] { return closed_; });
    }

    Simulator &simulator_;    // not touched once closed
    std::shared_mutex inUse_; // held by every call, so that close() can wait for them
    std::mutex mutex_;        // guards closed_
    std::condition_variable closing_;
    bool closed_ = false;
};

} // namespace

class InProcessSwitch::Impl {
public:
    explicit Impl(const SwitchOptions &options)
        : transport(std::make_shared<LocalTransport>(simulator))
    {
        simulator.setValue("platform-type", options.platformType);
        if (!options.stateDir.empty())
            server.emplace(simulator, options.stateDir + "/switch.sock", Serves::controlOnly);
    }
    ~Impl() { transport->close(); }
    Impl(const Impl &) = delete;
    Impl &operator=(const Impl &) = delete;

    Simulator simulator;
    std::shared_ptr<LocalTransport> transport;
    std::optional<SocketServer> server;
};

InProcessSwitch::InProcessSwitch(const SwitchOptions &options)
    : impl_(std::make_unique<Impl>(options))
{
}

InProcessSwitch::~InProcessSwitch() = default;

std::shared_ptr<backend::Transport> InProcessSwitch::transport() const
{
    return impl_->transport;
}

Simulator &InProcessSwitch::simulator() const
{
    return impl_->simulator;
}

std::unique_ptr<InProcessSwitch> startInProcessSwitch(const SwitchOptions &options)
{
    return std::make_unique<InProcessSwitch>(options);
}

} // namespace switchsim
