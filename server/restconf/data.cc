#include "server/restconf/data.h"

#include "server/nesting.h"
#include "server/restconf/conditions.h"
#include "server/restconf/errors.h"
#include "server/restconf/query.h"
#include "server/text.h"

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

namespace agentd::restconf {
namespace {

namespace http = boost::beast::http;

constexpr std::string_view kHost = "Host";

Conditions conditionsOf(const HttpMessage &message)
{
    const auto match = headerOf(message, http::field::if_match);
    const auto noneMatch = headerOf(message, http::field::if_none_match);
    const auto modified = headerOf(message, http::field::if_modified_since);
    const auto unmodified = headerOf(message, http::field::if_unmodified_since);
    return parseConditions({match, noneMatch, modified, unmodified});
}

void setVersion(HttpResponse &response, const tk::Stamp &stamp, const std::string &tag)
{
    response.set(http::field::etag, "\"" + tag + "\"");
    response.set(http::field::last_modified, httpDate(stamp.modified));
}

// Reading

bool mayHoldState(const tk::ReadRequest &read)
{
    return read.content != tk::Content::config && read.target.mayHoldState();
}

// A list without keys is fine in JSON; an XML document has one root (RFC 8040, section 4.3).
void checkSingleRoot(const tk::ReadRequest &read, const std::string &document)
{
    const auto kind = read.target.kind();
    if (read.encoding != tk::Encoding::xml || (kind != tk::NodeKind::list && kind != tk::NodeKind::leafList))
        return;
    pugi::xml_document parsed;
    const bool isSingle =
        parsed.load_buffer(document.data(), document.size()) && parsed.first_child() == parsed.last_child();
    if (!isSingle)
        throw badUri("there is more than one instance, and an XML answer holds only one: ask for JSON or "
                     "give its key");
}

HttpResponse answerRead(tk::Host &host, const Call &call, const tk::ReadRequest &read,
                        const Conditions &conditions)
{
    // Taken before the data: a commit in between makes the tag too old, which is safe.
    const tk::Stamp stamp = host.stamp();
    std::optional<std::string> document = host.read(read);
    if (!document)
        throw unknownResource("there is no data at " + read.target.path());
    checkSingleRoot(read, *document);
    const bool isVersioned = read.target.isConfig() && read.content != tk::Content::nonconfig;
    const bool hasState = mayHoldState(read);
    const std::string tag =
        entityTag(stamp, hasState ? std::optional<std::string_view>(*document) : std::nullopt);
    const bool isOld = isVersioned && isNotModified(conditions, {stamp, tag, hasState});
    HttpResponse response = isOld
        ? emptyAnswer(http::status::not_modified)
        : documentAnswer(http::status::ok, call.answer.mediaType, std::move(*document));
    if (isVersioned)
        setVersion(response, stamp, tag);
    return response;
}

// Writing

std::optional<tk::Encoding> bodyEncoding(const HttpMessage &message, std::string_view acceptPatch)
{
    const auto coding = headerOf(message, http::field::content_encoding);
    if (coding && !equalsIgnoringCase(trimmed(*coding), "identity"))
        throw unsupportedMediaType("bodies are taken without a content coding", std::string(acceptPatch));
    const auto type = headerOf(message, http::field::content_type);
    if (!type)
        throw unsupportedMediaType("a body needs a Content-Type", std::string(acceptPatch));
    const auto encoding = encodingOf(*type);
    if (!encoding)
        throw unsupportedMediaType("bodies are taken as " + std::string(kAcceptPatch),
                                   std::string(acceptPatch));
    return encoding;
}

void checkNesting(const std::string &body, tk::Encoding encoding)
{
    const auto fault = encoding == tk::Encoding::json ? jsonNestingFault(body) : xmlNestingFault(body);
    if (fault)
        throw badBody(*fault);
}

// What is no document at all is refused before it waits for the switch.
void checkSyntax(const std::string &body, tk::Encoding encoding)
{
    if (encoding == tk::Encoding::json && !nlohmann::json::accept(body))
        throw badBody("the body is not well-formed JSON");
    if (encoding == tk::Encoding::xml && !pugi::xml_document().load_buffer(body.data(), body.size()))
        throw badBody("the body is not well-formed XML");
}

tk::Encoding checkedBody(const HttpMessage &message, std::string_view acceptPatch = {})
{
    if (message.body().empty())
        throw badBody("the request needs a body");
    const tk::Encoding encoding = *bodyEncoding(message, acceptPatch);
    checkNesting(message.body(), encoding);
    checkSyntax(message.body(), encoding);
    return encoding;
}

std::optional<tk::Insert> insertOf(tk::Host &host, const Query &query)
{
    if (!query.insert)
        return std::nullopt;
    tk::Insert insert{*query.insert, std::nullopt};
    if (!query.point.empty())
        insert.point = host.resolve(query.point);
    return insert;
}

// Asked before the edit and not under its lock, under which nothing can be read. That is no gap: everything
// that edits runs on the same worker.
bool exists(tk::Host &host, const tk::Target &target)
{
    tk::ReadRequest read{.target = target, .fields = {}};
    read.content = tk::Content::config;
    read.depth = 1;
    return host.read(read).has_value();
}

std::string absolute(const HttpMessage &message, const std::string &path)
{
    const auto host = message[{kHost.data(), kHost.size()}];
    return host.empty() ? path : "https://" + std::string(host) + path;
}

HttpResponse answerEdit(tk::Host &host, Call &call, const tk::EditRequest &edit)
{
    const tk::EditOutcome outcome = host.edit(edit);
    call.record = outcome.record;
    HttpResponse response = emptyAnswer(outcome.created ? http::status::created : http::status::no_content);
    if (outcome.created) {
        const tk::Target &resource = outcome.resource ? *outcome.resource : edit.target;
        response.set(http::field::location, absolute(call.request.message, dataUri(resource.steps())));
    }
    if (edit.method != tk::Method::remove) {
        const tk::Stamp stamp = host.stamp();
        setVersion(response, stamp, stamp.tag);
    }
    return response;
}

tk::EditRequest editOf(tk::Host &host, Call &call, tk::Method method)
{
    const bool takesInsert = method == tk::Method::post || method == tk::Method::put;
    const Query query = parseQuery(call.uri.query, takesInsert ? QueryUse::insert : QueryUse::none);
    tk::EditRequest edit{
        .method = method, .target = *call.target, .body = {}, .insert = {}, .precondition = {}};
    if (method != tk::Method::remove) {
        edit.encoding = checkedBody(call.request.message, method == tk::Method::patch ? kAcceptPatch : "");
        edit.body = std::move(call.request.message.body());
    }
    edit.insert = insertOf(host, query);
    edit.saveLater = true;
    return edit;
}

} // namespace

Plan planRead(tk::Host &host, const CallPointer &call)
{
    Query query = parseQuery(call->uri.query, QueryUse::read);
    tk::ReadRequest read{.target = *call->target, .fields = {}};
    read.content = query.content;
    read.depth = query.depth;
    read.fields = std::move(query.fields);
    read.withDefaults = query.withDefaults;
    read.encoding = call->answer.encoding;
    const bool blocks = mayHoldState(read);
    return {blocks, [&host, call, read = std::move(read), conditions = conditionsOf(call->request.message)] {
                return answerRead(host, *call, read, conditions);
            }};
}

Plan planEdit(tk::Host &host, const CallPointer &call, tk::Method method)
{
    tk::EditRequest edit = editOf(host, *call, method);
    const Conditions conditions = conditionsOf(call->request.message);
    return {true, [&host, call, edit = std::move(edit), conditions]() mutable {
                if (!conditions.isEmpty()) {
                    const bool isThere = conditions.askForExistence() && exists(host, edit.target);
                    edit.precondition = [&host, &conditions, isThere] {
                        checkEdit(conditions, host.stamp(), isThere);
                    };
                }
                return answerEdit(host, *call, edit);
            }};
}

Plan planInvoke(tk::Host &host, const CallPointer &call)
{
    parseQuery(call->uri.query, QueryUse::none);
    const std::string &body = call->request.message.body();
    const tk::Encoding encoding = body.empty() ? tk::Encoding::json : checkedBody(call->request.message);
    return {true, [&host, call, encoding] {
                auto output =
                    host.invoke(*call->target, call->request.message.body(), encoding, call->answer.encoding);
                return output ? documentAnswer(http::status::ok, call->answer.mediaType, std::move(*output))
                              : emptyAnswer(http::status::no_content);
            }};
}

} // namespace agentd::restconf
