// The RESTCONF front end on a real host with a toy module, without connections.
#include "server/restconf/handler.h"

#include "server/files.h"
#include "tests/unit/server/temporary_folder.h"
#include "tests/unit/toolkit/toy.h"

#include <future>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>

namespace agentd::restconf {
namespace {

namespace http = boost::beast::http;
using namespace std::chrono_literals;
using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

using Headers = std::vector<std::pair<std::string, std::string>>;

constexpr char kStartup[] = R"({"toy:top": {
    "plain": "p", "words": ["a", "b"], "config": {"enabled": true, "limit": 5},
    "entry": [{"name": "x/y", "own": "1", "sub": [{"id": 7, "text": "seven"}]}, {"name": "z"}],
    "ranked": [{"name": "first"}, {"name": "last"}]}})";

const Headers kJson{{"Content-Type", "application/yang-data+json"}};
const Headers kXml{{"Content-Type", "application/yang-data+xml"}};
const Headers kWantsXml{{"Accept", "application/yang-data+xml"}};

struct Answer {
    unsigned status;
    HttpResponse message;

    std::string field(const char *name) const { return std::string(message[name]); }
    json document() const { return json::parse(message.body()); }
    std::string tag() const { return error("error-tag"); }
    std::string error(const char *member) const
    {
        return document()["ietf-restconf:errors"]["error"][0].value(member, "");
    }
};

constexpr char kTop[] = "/restconf/data/toy:top";

class HandlerTest : public ::testing::Test {
protected:
    HandlerTest() { bench.told(); } // what the start told is of no interest

    // Targets are those below kTop unless they begin at the root.
    std::future<Answer> begin(const std::string &method, const std::string &target,
                              const std::string &body = {}, const Headers &headers = kJson)
    {
        HttpRequest request{{}, "admin", "127.0.0.1:4711"};
        request.message.method_string(method);
        request.message.target(target[0] == '/' || target[0] == 'h' ? target
                                                                    : std::string(kTop) + "/" + target);
        request.message.version(11);
        request.message.set(http::field::host, "switch:8443");
        for (const auto &[name, value] : headers)
            request.message.insert(name, value);
        request.message.body() = body;
        auto promise = std::make_shared<std::promise<Answer>>();
        handler.serve(std::move(request), [promise](HttpResponse response) {
            const unsigned status = response.result_int();
            promise->set_value({status, std::move(response)});
        });
        return promise->get_future();
    }
    Answer ask(const std::string &method, const std::string &target, const std::string &body = {},
               const Headers &headers = kJson)
    {
        auto answer = begin(method, target, body, headers);
        if (answer.wait_for(10s) != std::future_status::ready)
            throw std::runtime_error("no answer to " + method + " " + target);
        return answer.get();
    }
    unsigned statusOf(const std::string &method, const std::string &target, const std::string &body = {},
                      const Headers &headers = kJson)
    {
        return ask(method, target, body, headers).status;
    }
    Answer get(const std::string &target, const Headers &headers = {})
    {
        return ask("GET", target, {}, headers);
    }
    json read(const std::string &target) { return get(target + "?content=config").document(); }

    ::test::ToyBench bench{kStartup};
    test::TemporaryFolder folder;
    Audit audit{folder.path() / "audit.log"};
    Worker callbacks{2};
    Handler handler{bench.host(), callbacks, audit};
};

TEST_F(HandlerTest, ReadsEveryKindOfResource)
{
    const std::pair<std::string, const char *> cases[] = {
        {"plain", R"({"toy:plain": "p"})"},
        {"config", R"({"toy:config": {"enabled": true, "limit": 5}})"},
        {"words", R"({"toy:words": ["a", "b"]})"},
        {"words=b", R"({"toy:words": ["b"]})"},
        {"entry=x%2Fy/sub=007/text", R"({"toy:text": "seven"})"}, // another way to write the key 7
        {"entry=z", R"({"toy:entry": [{"name": "z"}]})"},
        {"entry?fields=name", R"({"toy:entry": [{"name": "x/y"}, {"name": "z"}]})"},
        {"entry=x%2Fy?depth=1", R"({"toy:entry": [{"name": "x/y"}]})"},
        {"number?with-defaults=report-all", R"({"toy:number": 7})"},
        {"/restconf/data?fields=toy:top(plain;words)&content=config",
         R"({"ietf-restconf:data": {"toy:top": {"plain": "p", "words": ["a", "b"]}}})"},
        {"https://switch:8443/restconf/data/toy:top/plain", R"({"toy:plain": "p"})"},
    };
    for (const auto &[target, document] : cases) {
        SCOPED_TRACE(target);
        const Answer answer = get(target);
        EXPECT_EQ(answer.status, 200U);
        EXPECT_EQ(answer.field("Content-Type"), "application/yang-data+json");
        EXPECT_EQ(answer.field("Cache-Control"), "no-cache");
        EXPECT_EQ(answer.document(), json::parse(document));
    }
}

TEST_F(HandlerTest, ReadsInXmlAWholeListOnlyIfItHasOneEntry)
{
    pugi::xml_document document;
    const Answer answer = get("entry=x%2Fy", kWantsXml);
    EXPECT_EQ(answer.field("Content-Type"), "application/yang-data+xml");
    ASSERT_TRUE(document.load_string(answer.message.body().c_str()));
    EXPECT_STREQ(document.child("entry").child_value("name"), "x/y");
    EXPECT_STREQ(document.child("entry").attribute("xmlns").value(), "urn:test:toy");

    const Answer both = get("entry", kWantsXml);
    EXPECT_EQ(both.status, 400U);
    EXPECT_THAT(both.message.body(), HasSubstr("<error-tag>invalid-value</error-tag>"));
    ASSERT_EQ(statusOf("DELETE", "entry=z"), 204U);
    EXPECT_EQ(get("entry", kWantsXml).status, 200U);
}

TEST_F(HandlerTest, RefusesWithTheRightStatusAndTag)
{
    const char *const invalid = "invalid-value", *const malformed = "malformed-message";
    const char *const unsupported = "operation-not-supported", *const unknown = "unknown-element";
    const char *const q = R"({"toy:plain": "q"})";
    const Headers none;
    const struct {
        const char *method;
        std::string target;
        const char *body;
        unsigned status;
        const char *tag;
        Headers headers = kJson;
    } cases[] = {
        {"GET", "/restconf/nothing", "", 404, invalid},
        {"GET", "/restconf/data/none:top", "", 400, unknown},
        {"GET", "none", "", 400, unknown},
        {"GET", "entry=gone", "", 404, invalid},
        {"GET", "plain?insert=first", "", 400, invalid},
        {"GET", "config?fields=none", "", 400, invalid},
        {"GET", "plain", "", 406, invalid, {{"Accept", "text/html"}}},
        {"GET", "plain", "", 400, malformed, {{"If-None-Match", "rubbish"}}},
        {"GET", "/restconf/data/toy:add", "", 404, invalid},
        {"POST", "/restconf/operations/toy:top", "{}", 404, invalid},
        {"PUT", "plain", q, 415, invalid, none},
        {"PATCH", "plain", "{}", 415, invalid, {{"Content-Type", "application/yang-patch+json"}}},
        {"PUT", "plain", "x", 415, invalid, {kJson[0], {"Content-Encoding", "gzip"}}},
        {"PUT", "plain", "", 400, malformed},
        {"PUT", "plain", R"({"toy:plain": )", 400, malformed},
        {"PUT", "plain", "<!DOCTYPE x [<!ENTITY e 'e'>]><plain xmlns='urn:test:toy'>&e;</plain>", 400,
         malformed, kXml},
        {"PUT", "plain?depth=1", q, 400, invalid},
        {"POST", kTop, R"({"toy:entry": [{"name": "z"}]})", 409, "data-exists"},
        {"DELETE", "entry=gone", "", 409, "data-missing"},
        {"PUT", "entry", R"({"toy:entry": []})", 405, unsupported},
        {"PUT", "state", R"({"toy:state": {}})", 405, unsupported},
        {"DELETE", "/restconf/data", "", 405, unsupported},
        {"POST", "plain", "{}", 405, unsupported},
        {"GET", "/restconf/operations/toy:add", "", 405, unsupported},
        {"PUT", "/restconf", "{}", 405, unsupported},
        {"BREW", kTop, "", 405, unsupported},
    };
    const json before = read(kTop);
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.method) + " " + c.target + " " + c.body);
        const Answer answer = ask(c.method, c.target, c.body, c.headers);
        EXPECT_EQ(answer.status, c.status) << answer.message.body();
        if (answer.field("Content-Type") == "application/yang-data+xml")
            EXPECT_THAT(answer.message.body(), HasSubstr("<error-tag>" + std::string(c.tag) + "<"));
        else
            EXPECT_EQ(answer.tag(), c.tag);
        EXPECT_EQ(answer.field("Allow").empty(), c.status != 405);
    }
    EXPECT_EQ(read(kTop), before);
    EXPECT_TRUE(bench.told().empty());
}

TEST_F(HandlerTest, AnswersErrorsInTheEncodingOfTheClient)
{
    const auto type = [&](const Headers &headers) { return get("none", headers).field("Content-Type"); };
    EXPECT_EQ(type(kWantsXml), "application/yang-data+xml");
    EXPECT_EQ(type({{"Accept", "application/json"}}), "application/json");
    EXPECT_EQ(type({{"Accept", "text/html"}}), "application/yang-data+json");
    EXPECT_EQ(ask("PUT", "none", "<x/>", kXml).field("Content-Type"), "application/yang-data+xml");
}

TEST_F(HandlerTest, WritesInBothEncodings)
{
    const struct {
        const char *method;
        std::string target;
        const char *body;
        unsigned status;
        const char *location = "";
        Headers headers = kJson;
    } cases[] = {
        {"PUT", "plain", R"({"toy:plain": "q"})", 204},
        {"PUT", "lone", "<lone xmlns='urn:test:toy'>q</lone>", 201, "toy:top/lone", kXml},
        {"PATCH",
         "config",
         R"({"toy:config": {"limit": 6}})",
         204,
         "",
         {{"Content-Type", "application/json; charset=utf-8"}}},
        {"POST", kTop, R"({"toy:entry": [{"name": "a b/c,d", "own": "2"}]})", 201,
         "toy:top/entry=a%20b%2Fc%2Cd"},
        {"PUT", "entry=n%C3%BC", "<entry xmlns='urn:test:toy'><name>n\xc3\xbc</name></entry>", 201,
         "toy:top/entry=n%C3%BC", kXml},
        {"PUT", "words=c", R"({"toy:words": ["c"]})", 201, "toy:top/words=c"},
        {"DELETE", "words=a", "", 204},
        {"DELETE", "entry=x%2Fy", "", 204},
        {"PATCH", "/restconf/data",
         R"({"ietf-restconf:data": {"toy:late": {"plain": "l"}, "toy:top": {"marked": {}}}})", 204},
        {"POST", "marked", R"({"toy:note": "n"})", 201, "toy:top/marked/note"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.method) + " " + c.target);
        const Answer answer = ask(c.method, c.target, c.body, c.headers);
        EXPECT_EQ(answer.status, c.status) << answer.message.body();
        EXPECT_EQ(answer.field("Location"),
                  *c.location ? "https://switch:8443/restconf/data/" + std::string(c.location) : "");
        EXPECT_EQ(answer.message.body(), "");
        EXPECT_EQ(answer.message.has_content_length(), c.status != 204);
    }
    EXPECT_EQ(read("/restconf/data"), json::parse(R"({"ietf-restconf:data": {
        "toy:top": {"plain": "q", "words": ["b", "c"], "config": {"enabled": true, "limit": 6}, "lone": "q",
            "marked": {"note": "n"}, "entry": [{"name": "z"}, {"name": "a b/c,d", "own": "2"}, {"name": "n\u00fc"}],
            "ranked": [{"name": "first"}, {"name": "last"}]},
        "toy:late": {"plain": "l"}}})"));
}

TEST_F(HandlerTest, PlacesEntriesWhereTheClientWants)
{
    const std::string entry = R"({"toy:ranked": [{"name": "new"}]})", ranked = "%2Ftoy%3Atop%2Franked%3D";
    ASSERT_EQ(statusOf("POST", kTop + std::string("?insert=before&point=") + ranked + "last", entry), 201U);
    EXPECT_EQ(read("ranked")["toy:ranked"][1]["name"], "new");
    ASSERT_EQ(statusOf("PUT", "ranked=new?insert=first", entry), 204U);
    EXPECT_EQ(read("ranked")["toy:ranked"][0]["name"], "new");
    EXPECT_EQ(statusOf("PUT", "ranked=new?insert=after&point=" + ranked + "none", entry), 400U);
}

TEST_F(HandlerTest, TellsWhatTheCallbackSaid)
{
    const std::string limit = R"({"toy:config": {"limit": 6}})";
    bench.failAt("apply", "/toy:top/config", kDeviceText, "the switch says no");
    const Answer answer = ask("PATCH", "config", limit);
    EXPECT_EQ(answer.status, 500U);
    EXPECT_EQ(answer.tag(), "operation-failed");
    EXPECT_EQ(answer.error("error-app-tag"), "1042");
    EXPECT_EQ(answer.error("error-message"), "the switch says no");
    EXPECT_EQ(answer.error("error-path"), "/toy:top/config");

    bench.failAt("validate", "/toy:top/config", kNotSupported);
    const Answer refused = ask("PATCH", "config", limit);
    EXPECT_EQ(refused.status, 405U);
    EXPECT_EQ(refused.error("error-app-tag"), "273");
    EXPECT_EQ(refused.field("Allow"),
              "GET, HEAD, POST, PUT, DELETE, OPTIONS"); // all but the one that is refused
    EXPECT_EQ(read("config/limit"), json::parse(R"({"toy:limit": 5})"));
}

TEST_F(HandlerTest, EditsOnlyTheVersionThatTheClientKnows)
{
    const Answer first = get("config");
    const auto conditional = [&](const std::string &name, const std::string &value) {
        return ask("PATCH", "config", R"({"toy:config": {"limit": 6}})", {kJson[0], {name, value}});
    };
    EXPECT_EQ(conditional("If-None-Match", "*").status, 412U);
    EXPECT_EQ(conditional("If-Unmodified-Since", "Sun, 06 Nov 1994 08:49:37 GMT").status, 412U);
    EXPECT_EQ(read("config")["toy:config"]["limit"], 5);
    const Answer written = conditional("If-Match", first.field("ETag"));
    EXPECT_EQ(written.status, 204U);
    EXPECT_EQ(written.field("ETag"), get("config").field("ETag"));
    EXPECT_EQ(conditional("If-Match", first.field("ETag")).status, 412U); // it was changed by the one before
    // What is not there has no version.
    EXPECT_EQ(statusOf("PUT", "entry=new", R"({"toy:entry": [{"name": "new"}]})",
                       {kJson[0], {"If-None-Match", "*"}}),
              201U);
    EXPECT_EQ(statusOf("DELETE", "entry=gone", {}, {{"If-Match", "*"}}), 412U);
}

TEST_F(HandlerTest, SparesAReaderWhatHeHas)
{
    const Answer first = get("plain");
    const Answer same = get("plain", {{"If-None-Match", first.field("ETag")}});
    EXPECT_EQ(same.status, 304U);
    EXPECT_EQ(same.message.body(), "");
    EXPECT_EQ(same.field("ETag"), first.field("ETag"));
    EXPECT_EQ(get("plain", {{"If-Modified-Since", first.field("Last-Modified")}}).status, 304U);
    ASSERT_EQ(statusOf("PUT", "plain", R"({"toy:plain": "q"})"), 204U);
    EXPECT_EQ(get("plain", {{"If-None-Match", first.field("ETag")}}).status, 200U);
    EXPECT_EQ(get("plain", {{"If-Match", first.field("ETag")}}).status, 412U);
}

unsigned stateCount = 0;

Status getState(tk::Session *, tk::MessageHeader *, tk::GetBlock *get2cb)
{
    const tk::Object *state = getcb_get_obj(get2cb);
    Status status = kOk;
    tk::Object *child = obj_find_child(state, "toy", "count");
    getcb_add_return_val(get2cb, agt_make_uint_leaf2(child, "toy", "count", stateCount, &status));
    return status;
}

TEST_F(HandlerTest, NeverCallsChangedStateUnmodified)
{
    agt_cb_register_get_callback("toy", "/t:top/t:state", nullptr, getState);
    stateCount = 1;
    const Answer first = get(kTop);
    EXPECT_EQ(first.document()["toy:top"]["state"]["count"], 1);
    EXPECT_EQ(get(kTop, {{"If-None-Match", first.field("ETag")}}).status, 304U);
    stateCount = 2;
    EXPECT_EQ(get(kTop, {{"If-None-Match", first.field("ETag")}}).status, 200U);
    EXPECT_EQ(get(kTop, {{"If-Modified-Since", first.field("Last-Modified")}}).status, 200U);
    EXPECT_EQ(get("state").field("ETag"), ""); // state alone has no version
    // For an edit only the configuration's version counts.
    EXPECT_EQ(
        statusOf("PUT", "plain", R"({"toy:plain": "q"})", {kJson[0], {"If-Match", first.field("ETag")}}),
        204U);
}

TEST_F(HandlerTest, AnswersHeadLikeGetWithoutTheBody)
{
    const Answer whole = get("config"), head = ask("HEAD", "config"), missing = ask("HEAD", "lone");
    EXPECT_EQ(head.status, 200U);
    EXPECT_EQ(missing.status, 404U);
    EXPECT_EQ(head.message.body() + missing.message.body(), "");
    for (const char *name : {"Content-Type", "Content-Length", "ETag", "Last-Modified", "Cache-Control"})
        EXPECT_EQ(head.field(name), whole.field(name)) << name;
}

TEST_F(HandlerTest, SaysWhatAResourceCanDo)
{
    const std::pair<std::string, std::string> cases[] = {
        {"/restconf", "GET, HEAD, OPTIONS"},
        {"/restconf/data", "GET, HEAD, POST, PUT, PATCH, OPTIONS"},
        {"config", "GET, HEAD, POST, PUT, PATCH, DELETE, OPTIONS"},
        {"entry=new", "GET, HEAD, POST, PUT, PATCH, DELETE, OPTIONS"},
        {"plain", "GET, HEAD, PUT, PATCH, DELETE, OPTIONS"},
        {"entry", "GET, HEAD, OPTIONS"},
        {"state", "GET, HEAD, OPTIONS"},
        {"/restconf/operations/toy:add", "POST, OPTIONS"},
    };
    for (const auto &[target, allow] : cases) {
        SCOPED_TRACE(target);
        const Answer answer = ask("OPTIONS", target);
        EXPECT_EQ(answer.status, 200U);
        EXPECT_EQ(answer.field("Allow"), allow);
        EXPECT_EQ(answer.field("Accept-Patch").empty(), allow.find("PATCH") == allow.npos);
        EXPECT_EQ(ask("TRACE", target).field("Allow"), allow);
    }
}

TEST_F(HandlerTest, InvokesOperations)
{
    agt_rpc_register_method("toy", "add", tk::operationInvoke, ::test::addUp);
    const std::string add = "/restconf/operations/toy:add";
    const Answer sum = ask("POST", add, R"({"toy:input": {"a": 1, "b": 2}})");
    EXPECT_EQ(sum.status, 200U);
    EXPECT_EQ(sum.document(), json::parse(R"({"toy:output": {"response": {"sum": 3}}})"));
    const Answer inXml = ask("POST", add, "<input xmlns='urn:test:toy'><a>1</a><b>2</b></input>", kXml);
    EXPECT_EQ(inXml.field("Content-Type"), "application/yang-data+xml");
    EXPECT_THAT(inXml.message.body(), HasSubstr("<sum>3</sum>"));
    EXPECT_EQ(ask("POST", add, R"({"toy:input": {"a": 1}})").status, 204U); // without output
    EXPECT_EQ(ask("POST", add).tag(), "missing-element");                   // a is mandatory
    EXPECT_EQ(ask("POST", add, R"({"toy:input": {"a": "x"}})").status, 400U);
    EXPECT_EQ(statusOf("POST", add, R"({"toy:input": {"a": 1}})", {}), 415U);
    EXPECT_EQ(ask("POST", add + "?depth=1", R"({"toy:input": {"a": 1}})").status, 400U);
    agt_rpc_unregister_method("toy", "add");
}

TEST_F(HandlerTest, ShowsTheWayIn)
{
    EXPECT_THAT(get("/.well-known/host-meta").message.body(), HasSubstr("href=\"/restconf\""));
    EXPECT_EQ(get("/.well-known/host-meta").field("Content-Type"), "application/xrd+xml");
    EXPECT_EQ(get("/.well-known/host-meta", {{"Accept", "application/yang-data+json"}}).status, 406U);
    EXPECT_EQ(get("/restconf").document()["ietf-restconf:restconf"]["yang-library-version"], "2019-01-04");
    EXPECT_EQ(get("/restconf/yang-library-version").document(),
              json::parse(R"({"ietf-restconf:yang-library-version": "2019-01-04"})"));
    EXPECT_THAT(get("/restconf/operations", kWantsXml).message.body(), HasSubstr("xmlns=\"urn:test:toy\""));
    EXPECT_EQ(get("/restconf/operations").document()["ietf-restconf:operations"]["toy:add"],
              json::array({nullptr}));
}

TEST_F(HandlerTest, ServesConfigurationWhileACallbackWaits)
{
    ::test::SlowDevice device(bench);
    auto edit = begin("PUT", "plain", R"({"toy:plain": "new"})");
    device.awaitCall();
    EXPECT_EQ(get("plain").document(), json::parse(R"({"toy:plain": "p"})")); // as before the edit
    EXPECT_EQ(get(kTop + std::string("?content=config")).status, 200U);
    EXPECT_EQ(get("/restconf").status, 200U);
    EXPECT_EQ(ask("PUT", "none", "{}").status, 400U); // refused without waiting

    auto second = begin("PUT", "number", R"({"toy:number": 1})");
    auto third = begin("GET", kTop);
    const Answer beyond = ask("PUT", "number", R"({"toy:number": 2})");
    EXPECT_EQ(beyond.status, 409U);
    EXPECT_EQ(beyond.tag(), "resource-denied");

    device.answer();
    EXPECT_EQ(edit.get().status, 204U);
    EXPECT_EQ(second.get().status, 201U);
    EXPECT_EQ(third.get().document()["toy:top"]["plain"], "new");
    bench.watch = nullptr;
}

TEST_F(HandlerTest, WritesAnAuditTrailOfChangesAndRefusalsWithoutContent)
{
    ask("PUT", "password", R"({"toy:password": "hidden"})");
    ask("DELETE", "entry=gone");
    get("plain?content=config");
    ask("PUT", "plain?insert=hidden", R"({"toy:plain": "hidden"})");
    HttpRequest stranger{{}, "", "127.0.0.1:4712"};
    stranger.message.method_string("GET");
    stranger.message.target(kTop);
    const HttpResponse refusal = handler.refuse(HttpFault::badCredentials, stranger);
    EXPECT_EQ(refusal.result_int(), 401U);
    EXPECT_THAT(std::string(refusal[http::field::www_authenticate]), HasSubstr("Basic realm="));

    std::istringstream trail(readFile(folder.path() / "audit.log"));
    std::string lines;
    for (std::string line; std::getline(trail, line);)
        lines += line.substr(line.find(' ') + 1) + "\n"; // without the time
    EXPECT_EQ(
        lines,
        R"(restconf user="admin" from=127.0.0.1:4711 request="PUT /restconf/data/toy:top/password" outcome="201"
restconf user="admin" from=127.0.0.1:4711 request="DELETE /restconf/data/toy:top/entry=gone" outcome="409"
restconf user="admin" from=127.0.0.1:4711 request="PUT /restconf/data/toy:top/plain" outcome="400"
restconf user=- from=127.0.0.1:4712 request="GET /restconf/data/toy:top" outcome="401"
)");
}

} // namespace
} // namespace agentd::restconf
