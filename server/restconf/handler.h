// The RESTCONF front end behind the connections: finds out what is asked, dispatches, and turns whatever
// comes back or is thrown into an answer.
#pragma once

#include "server/audit.h"
#include "server/http_service.h"
#include "server/restconf/call.h"
#include "server/restconf/data.h"
#include "server/restconf/discovery.h"
#include "server/restconf/errors.h"
#include "server/worker.h"
#include "toolkit/datastores.h"
#include "toolkit/host.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace agentd::restconf {

class Handler : public HttpService {
public:
    // `callbacks` carries out what may wait for a daemon; everything else is answered on the calling thread.
    // The host has finished its start. `stores`: an edit is answered when they have it on disk. All outlive
    // the handler and its calls.
    Handler(tk::Host &host, Worker &callbacks, Audit &audit, tk::Datastores *stores = nullptr);

    void serve(HttpRequest request, Reply reply) override;
    HttpResponse refuse(HttpFault fault, const HttpRequest &request) override;
    void noteLogin(const std::string &user, const std::string &peer) override;

private:
    Plan plan(const CallPointer &call) const;
    Plan planAction(Action action, const CallPointer &call) const;
    Plan planApi(const CallPointer &call) const;
    void carryOut(const CallPointer &call, Plan plan, const Reply &reply);
    void finishSaved(const CallPointer &call, const Reply &reply, bool mayWait);
    void finish(Call &call, const Reply &reply);
    HttpResponse attempt(const Call &call, const std::function<HttpResponse()> &action) const;
    HttpResponse answerOf(const Call &call, const RequestError &error) const;
    HttpResponse answerOf(const Call &call, const tk::Failure &failure) const;
    HttpResponse errorAnswer(const Call &call, unsigned status, const std::vector<tk::Error> &errors) const;
    void record(const HttpRequest &request, std::string_view path, unsigned status);

    tk::Host &host_;
    Worker &callbacks_;
    Audit &audit_;
    tk::Datastores *stores_;
    std::map<std::string, std::string> namespaces_; // of the modules by name: they no longer change
    std::string libraryVersion_;
    std::vector<OperationName> operations_;
};

} // namespace agentd::restconf
