// Requests of all sessions: read, carried out where they may wait, answered. Everything that a request causes
// ends here, exceptions included.
#pragma once

#include "server/audit.h"
#include "server/netconf/operations.h"
#include "server/worker.h"

#include <map>
#include <mutex>
#include <vector>

namespace agentd::netconf {

class Dispatcher {
public:
    struct Answer {
        std::string reply;
        bool closes = false; // the session ends behind it
    };
    using Done = std::function<void(Answer)>;

    // All outlive this and its requests. The host has finished its start.
    Dispatcher(tk::Host &host, tk::Datastores &stores, Sessions &sessions, Worker &callbacks, Audit &audit);

    // Carries out a message of a session. Calls `done` once, at once or later on another thread; never if the
    // session ended in the meantime. Does not throw.
    void handle(const SessionPointer &session, const std::string &message, Done done);

    // The session is gone: gives back what it held, behind what is under way. False: that has to wait, call
    // sweep() in a moment.
    [[nodiscard]] bool release(const SessionPointer &session);
    [[nodiscard]] bool sweep();

    // Called whenever the time may have changed at which an unconfirmed commit has to be taken back.
    void onDeadlineChange(std::function<void()> action) { deadlineChanged_ = std::move(action); }
    // Takes it back if that time has come. False: too much is waiting, try again in a moment.
    [[nodiscard]] bool takeBackUnconfirmed();
    std::optional<std::chrono::steady_clock::time_point> deadline() const
    {
        return context_.stores.confirmDeadline();
    }

    const std::vector<std::string> &capabilities() const { return capabilities_; }
    Sessions &sessions() { return sessions_; }

private:
    struct Request;
    using RequestPointer = std::shared_ptr<Request>;
    void carryOut(const RequestPointer &request);
    void attempt(Request &request, const std::function<void()> &action) const;
    void fail(Request &request, std::vector<RpcError> errors) const;
    void finish(const RequestPointer &request);
    void releaseEnded();

    bool kill(std::uint32_t id);

    Sessions &sessions_;
    const OperationContext context_;
    Worker &callbacks_;
    Audit &audit_;
    std::map<std::string, std::string> namespaces_; // of the modules by name: they no longer change
    std::vector<std::string> capabilities_;
    std::function<void()> deadlineChanged_ = [] {};
    std::mutex mutex_;
    std::vector<std::uint32_t> ended_; // sessions that still hold something
};

} // namespace agentd::netconf
