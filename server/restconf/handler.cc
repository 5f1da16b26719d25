#include "server/restconf/handler.h"

#include "server/restconf/query.h"
#include "toolkit/log.h"

#include <utility>

namespace agentd::restconf {
namespace {

namespace http = boost::beast::http;

constexpr char kFrontEnd[] = "restconf";
constexpr char kLibraryModule[] = "ietf-yang-library";
constexpr unsigned kUnauthorized = 401, kMethodNotAllowed = 405;

bool changesNothing(http::verb verb)
{
    return verb == http::verb::get || verb == http::verb::head || verb == http::verb::options;
}

std::string_view targetOf(const HttpMessage &message)
{
    return {message.target().data(), message.target().size()};
}

// Errors can be read also where no data can: in what the client accepts, else in what it sent, else in JSON.
Offer errorOffer(const HttpMessage &message)
{
    const auto type = headerOf(message, http::field::content_type);
    const auto preferred = type ? encodingOf(*type).value_or(tk::Encoding::json) : tk::Encoding::json;
    const auto accept = headerOf(message, http::field::accept);
    const auto offer = negotiate(accept, dataOffers(), preferred);
    return offer.value_or(*negotiate(std::nullopt, dataOffers(), preferred));
}

Offer answerOffer(const HttpMessage &message, std::span<const Offer> offers, tk::Encoding preferred)
{
    const auto accept = headerOf(message, http::field::accept);
    const auto offer = negotiate(accept, offers, preferred);
    if (!offer)
        throw notAcceptable("none of the media types in Accept can be answered");
    return *offer;
}

RequestError faultError(HttpFault fault)
{
    switch (fault) {
    case HttpFault::malformed:
        return badHeader("this is not HTTP");
    case HttpFault::headerTooLong:
        return headerTooLong();
    case HttpFault::bodyTooLong:
        return bodyTooLong();
    case HttpFault::noHost:
        return badHeader("the request needs exactly one Host header");
    case HttpFault::noCredentials:
        return accessDenied("log in with a name and password");
    case HttpFault::badCredentials:
        return accessDenied("wrong name or password");
    case HttpFault::tooManyLogins:
        return accessDenied("too many failed attempts to log in, try again later");
    }
    return internalError();
}

// What every answer has in common. A HEAD is told the length of what a GET would bring; an answer that never
// has a body is told none at all.
void complete(HttpResponse &response, http::verb verb)
{
    const bool isRead = changesNothing(verb);
    const bool neverHasBody =
        response.result() == http::status::no_content || response.result() == http::status::not_modified;
    if (!neverHasBody)
        response.content_length(response.body().size());
    if (isRead) {
        response.set(http::field::cache_control, "no-cache");
        response.set(http::field::vary, "Accept");
    }
    if (verb == http::verb::head)
        response.body().clear();
}

using Document = std::function<std::string(tk::Encoding)>;

// An answer that is made of what the server knows without asking anybody.
Plan planDocument(const CallPointer &call, QueryUse use, Document make)
{
    parseQuery(call->uri.query, use);
    return {false, [call, make = std::move(make)] {
                const Offer &answer = call->answer;
                return documentAnswer(http::status::ok, answer.mediaType, make(answer.encoding));
            }};
}

Plan planOptions(const CallPointer &call)
{
    parseQuery(call->uri.query, QueryUse::none);
    HttpResponse response = emptyAnswer(http::status::ok);
    response.set(http::field::allow, allowOf(*call->kind));
    if (actionFor(*call->kind, http::verb::patch))
        response.set("Accept-Patch", {kAcceptPatch.data(), kAcceptPatch.size()});
    return {false, [response] { return response; }};
}

} // namespace

Handler::Handler(tk::Host &host, Worker &callbacks, Audit &audit, tk::Datastores *stores)
    : host_(host)
    , callbacks_(callbacks)
    , audit_(audit)
    , stores_(stores)
{
    for (const tk::ModuleInfo &module : host.modules()) {
        namespaces_.insert_or_assign(module.name, module.nameSpace);
        if (module.name == kLibraryModule)
            libraryVersion_ = module.revision;
    }
    for (const tk::PathStep &operation : host.operations())
        operations_.push_back({operation.module, namespaces_[operation.module], operation.name});
}

void Handler::serve(HttpRequest request, Reply reply)
{
    const auto call = std::make_shared<Call>(Call{.request = std::move(request)});
    call->uri = splitTarget(targetOf(call->request.message));
    call->answer = errorOffer(call->request.message);
    std::optional<Plan> ready;
    call->response = attempt(*call, [&] {
        ready = plan(call);
        return HttpResponse();
    });
    if (ready)
        carryOut(call, std::move(*ready), reply);
    else
        finish(*call, reply);
}

HttpResponse Handler::refuse(HttpFault fault, const HttpRequest &request)
{
    Call call{.request = request};
    call.uri = splitTarget(targetOf(request.message));
    call.answer = errorOffer(request.message);
    HttpResponse response = answerOf(call, faultError(fault));
    complete(response, request.message.method());
    if (response.result_int() == kUnauthorized)
        record(request, call.uri.path, kUnauthorized);
    return response;
}

void Handler::noteLogin(const std::string &user, const std::string &peer)
{
    audit_.record({kFrontEnd, user, peer, "login", "accepted"});
}

Plan Handler::plan(const CallPointer &call) const
{
    const HttpMessage &message = call->request.message;
    const ResourcePath path = parseResource(call->uri.path);
    if (path.resource == Resource::data || path.resource == Resource::operation)
        call->target = host_.resolve(path.steps);
    call->kind = kindOf(path.resource, call->target);
    const auto action = actionFor(*call->kind, message.method());
    if (!action)
        throw methodNotAllowed(std::string(message.method_string()), allowOf(*call->kind));
    if (*action == Action::readHostMeta)
        call->answer = answerOffer(message, hostMetaOffers(), tk::Encoding::xml);
    else if (*action != Action::describe)
        call->answer = answerOffer(message, dataOffers(), call->answer.encoding);
    return planAction(*action, call);
}

Plan Handler::planAction(Action action, const CallPointer &call) const
{
    switch (action) {
    case Action::readHostMeta:
        return planDocument(call, QueryUse::none, hostMetaDocument);
    case Action::readApi:
        return planApi(call);
    case Action::readLibraryVersion:
        return planDocument(call, QueryUse::none, [this](tk::Encoding encoding) {
            return libraryVersionDocument(encoding, libraryVersion_);
        });
    case Action::readOperations:
        return planDocument(call, QueryUse::none, [this](tk::Encoding encoding) {
            return operationsDocument(encoding, operations_);
        });
    case Action::read:
        return planRead(host_, call);
    case Action::create:
        return planEdit(host_, call, tk::Method::post);
    case Action::replace:
        return planEdit(host_, call, tk::Method::put);
    case Action::merge:
        return planEdit(host_, call, tk::Method::patch);
    case Action::remove:
        return planEdit(host_, call, tk::Method::remove);
    case Action::invoke:
        return planInvoke(host_, call);
    case Action::describe:
        break;
    }
    return planOptions(call);
}

Plan Handler::planApi(const CallPointer &call) const
{
    const bool isShallow = parseQuery(call->uri.query, QueryUse::api).depth == 1;
    return planDocument(call, QueryUse::api, [this, isShallow](tk::Encoding encoding) {
        return apiDocument(encoding, libraryVersion_, isShallow);
    });
}

void Handler::carryOut(const CallPointer &call, Plan plan, const Reply &reply)
{
    const auto job = [this, call, run = std::move(plan.run)] { call->response = attempt(*call, run); };
    const auto after = [this, call, reply](bool mayWait) { finishSaved(call, reply, mayWait); };
    if (!plan.blocks) {
        job();
        finish(*call, reply);
    } else if (!callbacks_.carryOut(job, after)) {
        call->response = answerOf(*call, busy("too many requests wait for the switch"));
        finish(*call, reply);
    }
}

// While one edit is written to the disk the next one is carried out, and they share what comes next.
void Handler::finishSaved(const CallPointer &call, const Reply &reply, bool mayWait)
{
    if (!call->record || !stores_)
        return finish(*call, reply);
    const auto saved = [this, call, reply](const tk::Failure *failure) {
        if (failure)
            call->response = answerOf(*call, *failure);
        finish(*call, reply);
    };
    stores_->whenSaved(call->record, saved, mayWait);
}

void Handler::finish(Call &call, const Reply &reply)
{
    const http::verb verb = call.request.message.method();
    complete(call.response, verb);
    if (!changesNothing(verb))
        record(call.request, call.uri.path, call.response.result_int());
    reply(std::move(call.response));
}

// The one place where exceptions end: nothing that a request causes gets further.
HttpResponse Handler::attempt(const Call &call, const std::function<HttpResponse()> &action) const
{
    try {
        return action();
    } catch (const RequestError &error) {
        return answerOf(call, error);
    } catch (const tk::Failure &failure) {
        return answerOf(call, failure);
    } catch (const std::exception &failure) {
        log_error("agentd: a request failed: %s\n", failure.what());
        return answerOf(call, internalError());
    }
}

HttpResponse Handler::answerOf(const Call &call, const RequestError &error) const
{
    HttpResponse response = errorAnswer(call, error.status, {error.error});
    for (const auto &[name, value] : error.fields)
        response.set(name, value);
    return response;
}

HttpResponse Handler::answerOf(const Call &call, const tk::Failure &failure) const
{
    const unsigned status = httpStatusOf(failure.errors.front().tag);
    HttpResponse response = errorAnswer(call, status, failure.errors);
    if (status == kMethodNotAllowed && call.kind)
        response.set(http::field::allow, allowOf(*call.kind, call.request.message.method()));
    return response;
}

HttpResponse Handler::errorAnswer(const Call &call, unsigned status,
                                  const std::vector<tk::Error> &errors) const
{
    // The answer may be meant for host-meta, whose types are none of an error's.
    const bool fits = encodingOf(call.answer.mediaType).has_value();
    const Offer offer = fits ? call.answer : errorOffer(call.request.message);
    const auto namespaceOf = [this](const std::string &module) {
        const auto found = namespaces_.find(module);
        return found == namespaces_.end() ? std::string() : found->second;
    };
    return documentAnswer(http::int_to_status(status), offer.mediaType,
                          errorDocument(errors, offer.encoding, namespaceOf));
}

// The query stays out: what it holds is no matter of the trail.
void Handler::record(const HttpRequest &request, std::string_view path, unsigned status)
{
    const std::string asked = std::string(request.message.method_string()) + " " + std::string(path);
    audit_.record({kFrontEnd, request.user, request.peer, asked, std::to_string(status)});
}

} // namespace agentd::restconf
