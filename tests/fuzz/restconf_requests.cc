// Requests as a RESTCONF client writes them: target, headers, body. Every request is answered once, with a
// status that tells of no fault of the server's own and a document that can be read; a path means the same
// after it was taken apart and put together again.
//
// The first byte chooses the method; lines follow: the target, headers, and behind an empty line the body.
#include "server/restconf/fields.h"
#include "server/restconf/handler.h"
#include "server/restconf/query.h"
#include "tests/fuzz/words.h"
#include "tests/unit/server/temporary_folder.h"
#include "tests/unit/toolkit/toy.h"

#include <cstdio>
#include <cstdlib>
#include <future>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>
#include <set>

namespace {

using namespace agentd;
using namespace agentd::restconf;
namespace http = boost::beast::http;

constexpr const char *kWords[] = {
    "/restconf/data/",
    "/restconf/data/toy:top/",
    "/restconf/data/toy:top",
    "/restconf/operations/toy:add",
    "/restconf/operations",
    "/restconf",
    "/.well-known/host-meta",
    "/restconf/yang-library-version",
    "toy:top",
    "toy:",
    "entry=a",
    "entry",
    "/sub=1",
    "/config",
    "/poke",
    "words=w",
    "words",
    "ranked=a",
    "marked",
    "state",
    "row=1",
    "/detail",
    "plain",
    "number",
    "form",
    "lone",
    "%2F",
    "%00",
    "%ff",
    "%",
    ",",
    "=",
    "?content=config",
    "?content=nonconfig",
    "?depth=",
    "?fields=",
    "?with-defaults=report-all",
    "&with-defaults=trim",
    "&",
    "?insert=first",
    "?insert=before&point=%2Ftoy:top%2Franked=a",
    "&point=",
    "insert=after",
    "depth=1",
    "unbounded",
    ";",
    "(",
    ")",
    "config/enabled",
    "https://h",
    "\nAccept: application/yang-data+xml",
    "\nAccept: ",
    "application/yang-data+json",
    ";q=0.5",
    "*/*",
    "\nContent-Type: application/yang-data+json",
    "\nContent-Type: application/yang-data+xml",
    "\nIf-Match: ",
    "\nIf-None-Match: *",
    "\"x\"",
    "W/",
    "\nIf-Modified-Since: Sun, 06 Nov 1994 08:49:37 GMT",
    "\nIf-Unmodified-Since: ",
    "\n\n",
    "{\"toy:config\":{\"enabled\":true}}",
    "{\"toy:entry\":[{\"name\":\"a\"}]}",
    "{\"toy:input\":{\"a\":1}}",
    "{\"toy:plain\":\"x\"}",
    "{\"toy:ranked\":[{\"name\":\"b\"}]}",
    "{\"toy:words\":[\"w\"]}",
    "<config xmlns='urn:test:toy'/>",
    "\nContent-Encoding: gzip",
};
constexpr const char *kMethods[] = {"GET", "HEAD", "OPTIONS", "PUT", "POST", "PATCH", "DELETE", "TRACE"};
constexpr unsigned kStatuses[] = {200, 201, 204, 304, 400, 404, 405, 406, 409, 412, 415};

void require(bool isRight, const char *what, std::string_view input)
{
    if (isRight)
        return;
    std::fprintf(stderr, "%s: %.*s\n", what, static_cast<int>(input.size()), input.data());
    std::abort();
}

// Calls a parser that may refuse; whether it did not.
template <class Parse>
bool accepts(const Parse &parse)
{
    try {
        parse();
        return true;
    } catch (const RequestError &) {
        return false;
    }
}

void requireUnique(const std::vector<tk::FieldNode> &fields, std::string_view input)
{
    std::set<std::pair<std::string, std::string>> names;
    for (const tk::FieldNode &field : fields) {
        require(names.insert({field.module, field.name}).second, "a field stands there twice", input);
        requireUnique(field.children, input);
    }
}

void checkParsers(std::string_view target)
{
    const SplitTarget parts = splitTarget(target);
    ResourcePath path;
    if (accepts([&] { path = parseResource(parts.path); }) && !path.steps.empty() &&
        path.resource == Resource::data) {
        const std::string again = dataUri(path.steps);
        const ResourcePath same = parseResource(again);
        require(dataUri(same.steps) == again, "a path is not stable", target);
        for (std::size_t i = 0; i < path.steps.size(); ++i)
            require(same.steps.at(i).keys == path.steps[i].keys && same.steps[i].name == path.steps[i].name,
                    "a path loses something", target);
    }
    for (const QueryUse use : {QueryUse::none, QueryUse::api, QueryUse::read, QueryUse::insert})
        accepts([&] { requireUnique(parseQuery(parts.query, use).fields, target); });
    std::string decoded;
    if (accepts([&] { decoded = percentDecoded(target); }))
        require(percentDecoded(percentEncoded(decoded)) == decoded, "encoding is no way back", target);
}

HttpMessage messageOf(const char *method, std::string_view text)
{
    HttpMessage message;
    message.method_string(method);
    message.version(11);
    message.set(http::field::host, "switch");
    for (bool isTarget = true;; isTarget = false) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const auto colon = line.find(':');
        if (isTarget)
            message.target({line.data(), line.size()});
        else if (line.empty())
            break;
        else if (colon != line.npos && colon > 0)
            message.insert(std::string(line.substr(0, colon)), std::string(line.substr(colon + 1)));
    }
    message.body() = text;
    return message;
}

bool isReadable(const HttpResponse &response)
{
    const std::string type(response[http::field::content_type]);
    pugi::xml_document document;
    if (type.find("json") != type.npos)
        return nlohmann::json::accept(response.body());
    return document.load_buffer(response.body().data(), response.body().size());
}

class Server {
public:
    void ask(const char *method, std::string_view text)
    {
        HttpRequest request{messageOf(method, text), "fuzz", "127.0.0.1:1"};
        std::promise<HttpResponse> answer;
        handler_.serve(std::move(request),
                       [&](HttpResponse response) { answer.set_value(std::move(response)); });
        const HttpResponse response = answer.get_future().get();
        require(std::find(std::begin(kStatuses), std::end(kStatuses), response.result_int()) !=
                    std::end(kStatuses),
                ("status " + std::to_string(response.result_int()) + " " + response.body()).c_str(), text);
        require(response.body().empty() || isReadable(response), "an answer that cannot be read", text);
        bench_.told();
    }

private:
    ::test::ToyBench bench_{R"({"toy:top": {"plain": "p", "words": ["w"], "config": {"enabled": true},
        "entry": [{"name": "a", "own": "1", "sub": [{"id": 1, "text": "t"}]}], "ranked": [{"name": "a"}]}})"};
    agentd::test::TemporaryFolder folder_;
    Audit audit_{folder_.path() / "audit.log"};
    Worker callbacks_{8};
    Handler handler_{bench_.host(), callbacks_, audit_};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Server server;
    if (size == 0 || size > 2048)
        return 0;
    const std::string text = fuzz::expanded(data + 1, size - 1, kWords);
    checkParsers(std::string_view(text).substr(0, text.find('\n')));
    server.ask(kMethods[data[0] % std::size(kMethods)], text);
    return 0;
}
