#include "server/netconf/dispatcher.h"

#include "server/netconf/monitoring.h"
#include "toolkit/log.h"

#include <utility>

namespace agentd::netconf {

namespace {

constexpr char kFrontEnd[] = "netconf";

} // namespace

struct Dispatcher::Request {
    SessionPointer session;
    Done done;
    Envelope envelope;
    Plan plan;
    std::string reply;
    std::string outcome = "ok"; // for the audit trail
};

Dispatcher::Dispatcher(tk::Host &host, tk::Datastores &stores, Sessions &sessions, Worker &callbacks,
                       Audit &audit)
    : sessions_(sessions)
    , context_{host, stores, [this](std::uint32_t id) { return kill(id); }}
    , callbacks_(callbacks)
    , audit_(audit)
    , capabilities_(serverCapabilities(host))
{
    for (const tk::ModuleInfo &module : host.modules())
        namespaces_.insert_or_assign(module.name, module.nameSpace);
}

void Dispatcher::handle(const SessionPointer &session, const std::string &message, Done done)
{
    const auto request = std::make_shared<Request>();
    request->session = session;
    request->done = std::move(done);
    attempt(*request, [&] {
        const auto document = loadMessage(message);
        request->envelope = Envelope(document->document_element());
        request->plan = planOperation(context_, operationOf(*document), *session);
        ++session->counters.inRpcs;
        ++sessions_.totals.inRpcs;
    });
    if (request->plan.run)
        return carryOut(request);
    ++session->counters.inBadRpcs;
    ++sessions_.totals.inBadRpcs;
    finish(request);
}

void Dispatcher::carryOut(const RequestPointer &request)
{
    const auto job = [this, request] {
        releaseEnded();
        if (request->session->hasEnded)
            return;
        attempt(*request, [&] { request->reply = request->plan.run(request->envelope); });
        finish(request);
    };
    if (!request->plan.blocks) {
        attempt(*request, [&] { request->reply = request->plan.run(request->envelope); });
        return finish(request);
    }
    if (callbacks_.post(job))
        return;
    fail(*request, resourceDenied("too many requests wait for the switch").errors);
    finish(request);
}

void Dispatcher::attempt(Request &request, const std::function<void()> &action) const
{
    try {
        action();
    } catch (const RpcFailure &failure) {
        fail(request, failure.errors);
    } catch (const tk::Failure &failure) {
        fail(request, fromToolkit(failure));
    } catch (const std::exception &failure) {
        log_error("agentd: a request failed: %s\n", failure.what());
        fail(request, internalError().errors);
    }
}

void Dispatcher::fail(Request &request, std::vector<RpcError> errors) const
{
    const auto namespaceOf = [this](const std::string &module) {
        const auto found = namespaces_.find(module);
        return found == namespaces_.end() ? std::string() : found->second;
    };
    request.outcome = errors.front().error.tag;
    request.reply = request.envelope.errors(errors, namespaceOf);
    ++request.session->counters.outRpcErrors;
    ++sessions_.totals.outRpcErrors;
}

void Dispatcher::finish(const RequestPointer &request)
{
    const SessionRecord &session = *request->session;
    if (!request->plan.audited.empty()) {
        audit_.record({kFrontEnd, session.user, session.peer, request->plan.audited, request->outcome});
        deadlineChanged_();
    }
    request->done({std::move(request->reply), request->plan.closes});
}

// What the session held is given back before anything else is carried out, as soon as a callback that works
// for it ends: whoever killed it can lock what it had locked.
bool Dispatcher::kill(std::uint32_t id)
{
    const SessionPointer killed = sessions_.kill(id);
    if (killed)
        static_cast<void>(release(killed)); // its connection sees to it if that has to wait
    return killed != nullptr;
}

bool Dispatcher::release(const SessionPointer &session)
{
    {
        const std::lock_guard lock(mutex_);
        ended_.push_back(session->id);
    }
    return sweep();
}

bool Dispatcher::sweep()
{
    {
        const std::lock_guard lock(mutex_);
        if (ended_.empty())
            return true;
    }
    return callbacks_.post([this] { releaseEnded(); });
}

void Dispatcher::releaseEnded()
{
    std::vector<std::uint32_t> ended;
    {
        const std::lock_guard lock(mutex_);
        ended.swap(ended_);
    }
    for (const std::uint32_t id : ended)
        context_.stores.sessionEnded(id);
    if (!ended.empty())
        deadlineChanged_();
}

bool Dispatcher::takeBackUnconfirmed()
{
    return callbacks_.post([this] {
        context_.stores.takeBackUnconfirmed();
        deadlineChanged_();
    });
}

} // namespace agentd::netconf
