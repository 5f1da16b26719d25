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

class HandlerTest : public ::testing::Test {
protected:
    HandlerTest() { bench.told(); } // what the start told is of no interest

    std::future<Answer> begin(const std::string &method, const std::string &target,
                              const Headers &headers = {}, const std::string &body = {})
    {
        HttpRequest request{{}, "admin", "127.0.0.1:4711"};
        request.message.method_string(method);
        request.message.target(target);
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
    Answer ask(const std::string &method, const std::string &target, const Headers &headers = {},
               const std::string &body = {})
    {
        auto answer = begin(method, target, headers, body);
        if (answer.wait_for(10s) != std::future_status::ready)
            throw std::runtime_error("no answer to " + method + " " + target);
        return answer.get();
    }
    Answer get(const std::string &target, const Headers &headers = {}) { return ask("GET", target, headers); }
    json read(const std::string &target) { return get(target + "?content=config").document(); }

    ::test::ToyBench bench{kStartup};
    test::TemporaryFolder folder;
    Audit audit{folder.path() / "audit.log"};
    Worker callbacks{2};
    Handler handler{bench.host(), callbacks, audit};
};

constexpr char kTop[] = "/restconf/data/toy:top";

std::string top(const std::string &more)
{
    return std::string(kTop) + "/" + more;
}

TEST_F(HandlerTest, ReadsEveryKindOfResource)
{
    struct Case {
        std::string target;
        const char *document;
    };
    const Case cases[] = {
        {top("plain"), R"({"toy:plain": "p"})"},
        {top("config"), R"({"toy:config": {"enabled": true, "limit": 5}})"},
        {top("words"), R"({"toy:words": ["a", "b"]})"},
        {top("words=b"), R"({"toy:words": ["b"]})"},
        {top("entry=x%2Fy/sub=7/text"), R"({"toy:text": "seven"})"},
        {top("entry=x%2Fy/sub=007/text"), R"({"toy:text": "seven"})"}, // another way to write the key
        {top("entry=z"), R"({"toy:entry": [{"name": "z"}]})"},
        {top("entry?fields=name"), R"({"toy:entry": [{"name": "x/y"}, {"name": "z"}]})"},
        {top("entry=x%2Fy?depth=1"), R"({"toy:entry": [{"name": "x/y"}]})"},
        {top("number?with-defaults=report-all"), R"({"toy:number": 7})"},
        {"/restconf/data?fields=toy:top(plain;words)&content=config",
         R"({"ietf-restconf:data": {"toy:top": {"plain": "p", "words": ["a", "b"]}}})"},
        {"https://switch:8443/restconf/data/toy:top/plain", R"({"toy:plain": "p"})"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.target);
        const Answer answer = get(c.target);
        EXPECT_EQ(answer.status, 200U);
        EXPECT_EQ(answer.field("Content-Type"), "application/yang-data+json");
        EXPECT_EQ(answer.field("Cache-Control"), "no-cache");
        EXPECT_EQ(answer.document(), json::parse(c.document));
    }
}

TEST_F(HandlerTest, ReadsInXml)
{
    pugi::xml_document document;
    const Answer answer = get(top("entry=x%2Fy"), kWantsXml);
    EXPECT_EQ(answer.field("Content-Type"), "application/yang-data+xml");
    ASSERT_TRUE(document.load_string(answer.message.body().c_str()));
    EXPECT_STREQ(document.child("entry").child_value("name"), "x/y");
    EXPECT_STREQ(document.child("entry").attribute("xmlns").value(), "urn:test:toy");
}

TEST_F(HandlerTest, GivesAWholeListInXmlOnlyIfItHasOneEntry)
{
    const Answer both = get(top("entry"), kWantsXml);
    EXPECT_EQ(both.status, 400U);
    EXPECT_THAT(both.message.body(), HasSubstr("<error-tag>invalid-value</error-tag>"));
    ASSERT_EQ(ask("DELETE", top("entry=z")).status, 204U);
    EXPECT_EQ(get(top("entry"), kWantsXml).status, 200U);
}

TEST_F(HandlerTest, RefusesWithTheRightStatusAndTag)
{
    struct Case {
        const char *method;
        std::string target;
        Headers headers;
        const char *body;
        unsigned status;
        const char *tag;
    };
    const Case cases[] = {
        {"GET", "/restconf/nothing", {}, "", 404, "invalid-value"},
        {"GET", "/restconf/data/none:top", {}, "", 400, "unknown-element"},
        {"GET", top("none"), {}, "", 400, "unknown-element"},
        {"GET", top("entry=a,b"), {}, "", 400, "invalid-value"},
        {"GET", top("entry=a/sub=x"), {}, "", 400, "invalid-value"},
        {"GET", top("entry=gone"), {}, "", 404, "invalid-value"},
        {"GET", top("lone"), {}, "", 404, "invalid-value"},
        {"GET", top("plain%zz"), {}, "", 400, "invalid-value"},
        {"GET", top("plain?depth=0"), {}, "", 400, "invalid-value"},
        {"GET", top("plain?unknown=1"), {}, "", 400, "invalid-value"},
        {"GET", top("plain?insert=first"), {}, "", 400, "invalid-value"},
        {"GET", top("config?fields=none"), {}, "", 400, "invalid-value"},
        {"GET", top("plain"), {{"Accept", "text/html"}}, "", 406, "invalid-value"},
        {"GET", "/restconf/data/toy:add", {}, "", 404, "invalid-value"},
        {"POST", "/restconf/operations/toy:top", kJson, "{}", 404, "invalid-value"},
        {"POST", "/restconf/operations/toy:none", kJson, "{}", 400, "unknown-element"},
        {"PUT", top("plain"), {}, R"({"toy:plain": "q"})", 415, "invalid-value"},
        {"PUT",
         top("plain"),
         {{"Content-Type", "text/plain"}},
         R"({"toy:plain": "q"})",
         415,
         "invalid-value"},
        {"PATCH",
         top("plain"),
         {{"Content-Type", "application/yang-patch+json"}},
         "{}",
         415,
         "invalid-value"},
        {"PUT",
         top("plain"),
         {{"Content-Type", "application/yang-data+json"}, {"Content-Encoding", "gzip"}},
         "x",
         415,
         "invalid-value"},
        {"PUT", top("plain"), kJson, "", 400, "malformed-message"},
        {"PUT", top("plain"), kJson, R"({"toy:plain": )", 400, "malformed-message"},
        {"PUT", top("plain"), kXml, "<plain xmlns='urn:test:toy'>", 400, "malformed-message"},
        {"PUT", top("plain"), kXml, "<!DOCTYPE x [<!ENTITY e 'e'>]><plain xmlns='urn:test:toy'>&e;</plain>",
         400, "malformed-message"},
        {"PUT", top("plain"), kJson, R"({"toy:lone": "q"})", 400, "bad-element"},
        {"PUT", top("plain?depth=1"), kJson, R"({"toy:plain": "q"})", 400, "invalid-value"},
        {"PUT", top("config"), kJson, R"({"toy:config": {"limit": "x"}})", 400, "invalid-value"},
        {"PUT", top("config"), kJson, R"({"toy:config": {"none": 1}})", 400, "unknown-element"},
        {"PUT", top("entry=a"), kJson, R"({"toy:entry": [{"name": "b"}]})", 400, "invalid-value"},
        {"POST", kTop, kJson, R"({"toy:entry": [{"name": "z"}]})", 409, "data-exists"},
        {"DELETE", top("entry=gone"), {}, "", 409, "data-missing"},
        {"PUT", top("entry"), kJson, R"({"toy:entry": []})", 405, "operation-not-supported"},
        {"PUT", top("state"), kJson, R"({"toy:state": {}})", 405, "operation-not-supported"},
        {"DELETE", "/restconf/data", {}, "", 405, "operation-not-supported"},
        {"POST", top("plain"), kJson, "{}", 405, "operation-not-supported"},
        {"GET", "/restconf/operations/toy:add", {}, "", 405, "operation-not-supported"},
        {"PUT", "/restconf", kJson, "{}", 405, "operation-not-supported"},
        {"TRACE", kTop, {}, "", 405, "operation-not-supported"},
        {"BREW", kTop, {}, "", 405, "operation-not-supported"},
        {"GET", top("plain"), {{"If-None-Match", "rubbish"}}, "", 400, "malformed-message"},
    };
    const json before = read(kTop);
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.method) + " " + c.target + " " + c.body);
        const Answer answer = ask(c.method, c.target, c.headers, c.body);
        EXPECT_EQ(answer.status, c.status) << answer.message.body();
        const bool isXml = answer.field("Content-Type") == "application/yang-data+xml";
        if (isXml)
            EXPECT_THAT(answer.message.body(), HasSubstr("<error-tag>" + std::string(c.tag) + "<"));
        else
            EXPECT_EQ(answer.tag(), c.tag);
        EXPECT_EQ(answer.field("Allow").empty(), c.status != 405);
    }
    EXPECT_EQ(read(kTop), before);
    EXPECT_TRUE(bench.told().empty());
}

TEST_F(HandlerTest, RefusesBodiesThatAreNestedTooDeeply)
{
    std::string deepJson = R"({"toy:top": )", deepXml;
    for (int i = 0; i < 100000; ++i) {
        deepJson += "[";
        deepXml += "<top xmlns='urn:test:toy'>";
    }
    for (const auto &[headers, body] : {std::pair{kJson, deepJson}, std::pair{kXml, deepXml}}) {
        const Answer answer = ask("PUT", kTop, headers, body);
        EXPECT_EQ(answer.status, 400U);
        EXPECT_THAT(answer.message.body(), HasSubstr("levels deep"));
    }
}

TEST_F(HandlerTest, AnswersErrorsInTheEncodingOfTheClient)
{
    EXPECT_EQ(get(top("none"), kWantsXml).field("Content-Type"), "application/yang-data+xml");
    EXPECT_EQ(get(top("none"), {{"Accept", "application/json"}}).field("Content-Type"), "application/json");
    EXPECT_EQ(get(top("none"), {{"Accept", "text/html"}}).field("Content-Type"),
              "application/yang-data+json");
    EXPECT_EQ(ask("PUT", top("none"), kXml, "<x/>").field("Content-Type"), "application/yang-data+xml");
    EXPECT_EQ(get("/.well-known/host-meta?x", {{"Accept", "application/xrd+xml"}}).tag(), "invalid-value");
}

TEST_F(HandlerTest, WritesInBothEncodings)
{
    struct Case {
        const char *method;
        std::string target;
        Headers headers;
        const char *body;
        unsigned status;
        const char *location;
    };
    const Case cases[] = {
        {"PUT", top("plain"), kJson, R"({"toy:plain": "q"})", 204, ""},
        {"PUT", top("lone"), kXml, "<lone xmlns='urn:test:toy'>q</lone>", 201, "toy:top/lone"},
        {"PATCH",
         top("config"),
         {{"Content-Type", "application/json; charset=utf-8"}},
         R"({"toy:config": {"limit": 6}})",
         204,
         ""},
        {"POST", kTop, kJson, R"({"toy:entry": [{"name": "a b/c,d", "own": "2"}]})", 201,
         "toy:top/entry=a%20b%2Fc%2Cd"},
        {"PUT", top("entry=n%C3%BC"), kXml, "<entry xmlns='urn:test:toy'><name>n\xc3\xbc</name></entry>", 201,
         "toy:top/entry=n%C3%BC"},
        {"PUT", top("words=c"), kJson, R"({"toy:words": ["c"]})", 201, "toy:top/words=c"},
        {"DELETE", top("words=a"), {}, "", 204, ""},
        {"DELETE", top("entry=x%2Fy"), {}, "", 204, ""},
        {"PATCH", "/restconf/data", kJson,
         R"({"ietf-restconf:data": {"toy:late": {"plain": "l"}, "toy:top": {"marked": {}}}})", 204, ""},
        {"POST", top("marked"), kJson, R"({"toy:note": "n"})", 201, "toy:top/marked/note"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(std::string(c.method) + " " + c.target);
        const Answer answer = ask(c.method, c.target, c.headers, c.body);
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
    const std::string entry = R"({"toy:ranked": [{"name": "new"}]})";
    ASSERT_EQ(
        ask("POST", std::string(kTop) + "?insert=before&point=%2Ftoy%3Atop%2Franked%3Dlast", kJson, entry)
            .status,
        201U);
    EXPECT_EQ(read(top("ranked")),
              json::parse(R"({"toy:ranked": [{"name": "first"}, {"name": "new"}, {"name": "last"}]})"));
    ASSERT_EQ(ask("PUT", top("ranked=new?insert=first"), kJson, entry).status, 204U);
    EXPECT_EQ(read(top("ranked"))["toy:ranked"][0]["name"], "new");
    EXPECT_EQ(
        ask("PUT", top("ranked=new?insert=after&point=%2Ftoy%3Atop%2Franked%3Dnone"), kJson, entry).status,
        400U);
    EXPECT_EQ(ask("PUT", top("ranked=new?insert=after&point=%2Ftoy%3Anone"), kJson, entry).status, 400U);
}

TEST_F(HandlerTest, TellsWhatTheCallbackSaid)
{
    bench.failAt("apply", "/toy:top/config", kDeviceText, "the switch says no");
    const Answer answer = ask("PATCH", top("config"), kJson, R"({"toy:config": {"limit": 6}})");
    EXPECT_EQ(answer.status, 500U);
    EXPECT_EQ(answer.tag(), "operation-failed");
    EXPECT_EQ(answer.error("error-app-tag"), "1042");
    EXPECT_EQ(answer.error("error-message"), "the switch says no");
    EXPECT_EQ(answer.error("error-path"), "/toy:top/config");

    bench.failAt("validate", "/toy:top/config", kNotSupported);
    const Answer refused = ask("PATCH", top("config"), kJson, R"({"toy:config": {"limit": 6}})");
    EXPECT_EQ(refused.status, 405U);
    EXPECT_EQ(refused.error("error-app-tag"), "273");
    EXPECT_EQ(refused.field("Allow"),
              "GET, HEAD, POST, PUT, DELETE, OPTIONS"); // all but the one that is refused
    EXPECT_EQ(read(top("config/limit")), json::parse(R"({"toy:limit": 5})"));
}

TEST_F(HandlerTest, EditsOnlyTheVersionThatTheClientKnows)
{
    const std::string config = top("config"), body = R"({"toy:config": {"limit": 6}})";
    const Answer first = get(config);
    const auto conditional = [&](const std::string &name, const std::string &value) {
        return ask("PATCH", config, {kJson[0], {name, value}}, body).status;
    };
    EXPECT_EQ(conditional("If-Match", "\"other\""), 412U);
    EXPECT_EQ(conditional("If-None-Match", "*"), 412U);
    EXPECT_EQ(read(config)["toy:config"]["limit"], 5);
    EXPECT_EQ(conditional("If-Match", first.field("ETag")), 204U);
    EXPECT_EQ(conditional("If-Match", first.field("ETag")), 412U); // it was changed by the one before
    EXPECT_EQ(conditional("If-Unmodified-Since", get(config).field("Last-Modified")), 204U);
    EXPECT_EQ(conditional("If-Unmodified-Since", "Sun, 06 Nov 1994 08:49:37 GMT"), 412U);
    const auto create = [&](const std::string &name) {
        const std::string entry = R"({"toy:entry": [{"name": ")" + name + "\"}]}";
        return ask("PUT", top("entry=" + name), {kJson[0], {"If-None-Match", "*"}}, entry).status;
    };
    EXPECT_EQ(create("z"), 412U);
    EXPECT_EQ(create("new"), 201U);
    EXPECT_EQ(ask("DELETE", top("entry=gone"), {{"If-Match", "*"}}).status, 412U);
    EXPECT_EQ(ask("DELETE", top("entry=new"), {{"If-Match", "*"}}).status, 204U);
}

TEST_F(HandlerTest, HandsTheNewVersionToTheWriter)
{
    const Answer written = ask("PUT", top("plain"), kJson, R"({"toy:plain": "q"})");
    EXPECT_EQ(written.field("ETag"), get(top("plain")).field("ETag"));
    EXPECT_EQ(
        ask("PUT", top("plain"), {kJson[0], {"If-Match", written.field("ETag")}}, R"({"toy:plain": "r"})")
            .status,
        204U);
}

TEST_F(HandlerTest, SparesAReaderWhatHeHas)
{
    const auto again = [&](const std::string &target, const std::string &name, const std::string &value) {
        return get(target, {{name, value}});
    };
    const std::string leaf = top("plain");
    const Answer first = get(leaf);
    const Answer same = again(leaf, "If-None-Match", first.field("ETag"));
    EXPECT_EQ(same.status, 304U);
    EXPECT_EQ(same.message.body(), "");
    EXPECT_EQ(same.field("ETag"), first.field("ETag"));
    EXPECT_EQ(again(leaf, "If-Modified-Since", first.field("Last-Modified")).status, 304U);
    ASSERT_EQ(ask("PUT", leaf, kJson, R"({"toy:plain": "q"})").status, 204U);
    EXPECT_EQ(again(leaf, "If-None-Match", first.field("ETag")).status, 200U);
    EXPECT_EQ(again(leaf, "If-Match", first.field("ETag")).status, 412U);
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
    EXPECT_EQ(get(top("state")).field("ETag"), ""); // state alone has no version
    // For an edit only the configuration's version counts.
    EXPECT_EQ(ask("PUT", top("plain"), {kJson[0], {"If-Match", first.field("ETag")}}, R"({"toy:plain": "q"})")
                  .status,
              204U);
}

TEST_F(HandlerTest, AnswersHeadLikeGetWithoutTheBody)
{
    const Answer whole = get(top("config")), head = ask("HEAD", top("config"));
    EXPECT_EQ(head.status, 200U);
    EXPECT_EQ(head.message.body(), "");
    for (const char *name : {"Content-Type", "Content-Length", "ETag", "Last-Modified", "Cache-Control"})
        EXPECT_EQ(head.field(name), whole.field(name)) << name;
    const Answer missing = ask("HEAD", top("lone"));
    EXPECT_EQ(missing.status, 404U);
    EXPECT_EQ(missing.message.body(), "");
}

TEST_F(HandlerTest, SaysWhatAResourceCanDo)
{
    struct Case {
        std::string target;
        const char *allow;
    };
    const Case cases[] = {
        {"/restconf", "GET, HEAD, OPTIONS"},
        {"/restconf/data", "GET, HEAD, POST, PUT, PATCH, OPTIONS"},
        {top("config"), "GET, HEAD, POST, PUT, PATCH, DELETE, OPTIONS"},
        {top("entry=new"), "GET, HEAD, POST, PUT, PATCH, DELETE, OPTIONS"},
        {top("plain"), "GET, HEAD, PUT, PATCH, DELETE, OPTIONS"},
        {top("entry"), "GET, HEAD, OPTIONS"},
        {top("state"), "GET, HEAD, OPTIONS"},
        {"/restconf/operations/toy:add", "POST, OPTIONS"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.target);
        const Answer answer = ask("OPTIONS", c.target);
        EXPECT_EQ(answer.status, 200U);
        EXPECT_EQ(answer.field("Allow"), c.allow);
        const bool takesPatch = std::string(c.allow).find("PATCH") != std::string::npos;
        EXPECT_EQ(answer.field("Accept-Patch").empty(), !takesPatch);
        EXPECT_EQ(ask("TRACE", c.target).field("Allow"), c.allow);
    }
}

Status addUp(tk::Session *, tk::Request *request, tk::Value *)
{
    const tk::Value *a = val_find_child(agt_get_rpc_input(request), "toy", "a");
    const tk::Value *b = val_find_child(agt_get_rpc_input(request), "toy", "b");
    if (!b)
        return kOk;
    tk::Object *response =
        obj_find_child(obj_find_child(request->method, "toy", "output"), "toy", "response");
    Status status = kOk;
    const auto sum = static_cast<std::int32_t>(val_get_int64(a) + val_get_int64(b));
    agt_rpc_add_return_val(agt_make_int_leaf(obj_find_child(response, "toy", "sum"), "sum", sum, &status),
                           request);
    return status;
}

TEST_F(HandlerTest, InvokesOperations)
{
    agt_rpc_register_method("toy", "add", tk::operationInvoke, addUp);
    const std::string add = "/restconf/operations/toy:add";
    const Answer sum = ask("POST", add, kJson, R"({"toy:input": {"a": 1, "b": 2}})");
    EXPECT_EQ(sum.status, 200U);
    EXPECT_EQ(sum.document(), json::parse(R"({"toy:output": {"response": {"sum": 3}}})"));
    const Answer inXml = ask("POST", add, kXml, "<input xmlns='urn:test:toy'><a>1</a><b>2</b></input>");
    EXPECT_EQ(inXml.field("Content-Type"), "application/yang-data+xml");
    EXPECT_THAT(inXml.message.body(), HasSubstr("<sum>3</sum>"));
    EXPECT_EQ(ask("POST", add, kJson, R"({"toy:input": {"a": 1}})").status, 204U); // without output
    EXPECT_EQ(ask("POST", add).tag(), "missing-element");                          // a is mandatory
    EXPECT_EQ(ask("POST", add, kJson, R"({"toy:input": {"a": "x"}})").status, 400U);
    EXPECT_EQ(ask("POST", add, {}, R"({"toy:input": {"a": 1}})").status, 415U);
    EXPECT_EQ(ask("POST", add + "?depth=1", kJson, R"({"toy:input": {"a": 1}})").status, 400U);
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
    EXPECT_EQ(get("/restconf/operations").document()["ietf-restconf:operations"]["toy:add"],
              json::array({nullptr}));
}

TEST_F(HandlerTest, ServesConfigurationWhileACallbackWaits)
{
    std::promise<void> entered, release;
    bench.watch = [&, once = false](const std::string &line, tk::Value *, tk::Value *) mutable {
        if (once || line.rfind("apply", 0) != 0)
            return;
        once = true;
        entered.set_value();
        release.get_future().wait();
    };
    auto edit = begin("PUT", top("plain"), kJson, R"({"toy:plain": "new"})");
    entered.get_future().wait();
    EXPECT_EQ(get(top("plain")).document(), json::parse(R"({"toy:plain": "p"})")); // as before the edit
    EXPECT_EQ(get(kTop + std::string("?content=config")).status, 200U);
    EXPECT_EQ(get("/restconf").status, 200U);
    EXPECT_EQ(ask("PUT", top("none"), kJson, "{}").status, 400U); // refused without waiting

    auto second = begin("PUT", top("number"), kJson, R"({"toy:number": 1})");
    auto third = begin("GET", kTop);
    const Answer beyond = ask("PUT", top("number"), kJson, R"({"toy:number": 2})");
    EXPECT_EQ(beyond.status, 409U);
    EXPECT_EQ(beyond.tag(), "resource-denied");

    release.set_value();
    EXPECT_EQ(edit.get().status, 204U);
    EXPECT_EQ(second.get().status, 201U);
    EXPECT_EQ(third.get().document()["toy:top"]["plain"], "new");
    bench.watch = nullptr;
}

TEST_F(HandlerTest, WritesAnAuditTrailOfChangesAndRefusalsWithoutContent)
{
    ask("PUT", top("password"), kJson, R"({"toy:password": "hidden"})");
    ask("DELETE", top("entry=gone"));
    get(top("plain?content=config"));
    ask("PUT", top("plain?insert=hidden"), kJson, R"({"toy:plain": "hidden"})");
    HttpRequest stranger{{}, "", "127.0.0.1:4712"};
    stranger.message.method_string("GET");
    stranger.message.target(kTop);
    const HttpResponse refusal = handler.refuse(HttpFault::badCredentials, stranger);
    EXPECT_EQ(refusal.result_int(), 401U);
    EXPECT_THAT(std::string(refusal[http::field::www_authenticate]), HasSubstr("Basic realm="));

    std::istringstream trail(readFile(folder.path() / "audit.log"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(trail, line);)
        lines.push_back(line.substr(line.find(' ') + 1)); // without the time
    EXPECT_THAT(
        lines,
        ::testing::ElementsAre(
            "restconf user=\"admin\" from=127.0.0.1:4711 request=\"PUT /restconf/data/toy:top/password\" "
            "outcome=\"201\"",
            "restconf user=\"admin\" from=127.0.0.1:4711 request=\"DELETE "
            "/restconf/data/toy:top/entry=gone\" outcome=\"409\"",
            "restconf user=\"admin\" from=127.0.0.1:4711 request=\"PUT /restconf/data/toy:top/plain\" "
            "outcome=\"400\"",
            "restconf user=- from=127.0.0.1:4712 request=\"GET /restconf/data/toy:top\" outcome=\"401\""));
}

} // namespace
} // namespace agentd::restconf
