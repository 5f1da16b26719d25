// Sessions without a connection: what a client sends, and every byte that it gets back.
#include "server/files.h"
#include "server/netconf/session.h"
#include "tests/unit/netconf/stores_bench.h"

#include <deque>
#include <gmock/gmock.h>

namespace agentd::netconf {
namespace {

using ::test::StoresBench;
using ::test::top;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr char kReply[] = "<rpc-reply message-id=\"1\" xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">";
const std::string kDone = std::string(kReply) + "<ok/></rpc-reply>";
const std::string kNothing = std::string(kReply) + "<data></data></rpc-reply>";
constexpr char kGetRunning[] = "<get-config><source><running/></source></get-config>";
constexpr char kDiscard[] = "<discard-changes/>";
constexpr char kEnd[] = "]]>]]>";

std::string based(const std::string &element, const std::string &content)
{
    return "<" + element + " xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'>" + content + "</" +
        element.substr(0, element.find(' ')) + ">";
}

using Text = const std::string &;
const auto helloOf = [](Text capability, Text more = {}) {
    return based("hello", "<capabilities><capability>" + capability + "</capability></capabilities>" + more) +
        kEnd;
};
const std::string kHello10 = helloOf("urn:ietf:params:netconf:base:1.0");
const std::string kHello11 = helloOf(" urn:ietf:params:netconf:base:1.1\n");

const auto rpcOf = [](Text operation) { return based("rpc message-id='1'", operation); };
const auto lockOf = [](Text store) { return "<lock><target><" + store + "/></target></lock>"; };
const auto killOf = [](Text id) {
    return "<kill-session><session-id>" + id + "</session-id></kill-session>";
};
const auto editOf = [](Text content, Text options = {}) {
    return "<edit-config><target><running/></target>" + options + "<config>" + top(content) +
        "</config></edit-config>";
};
const auto schemaOf = [](Text content) {
    return "<get-schema xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring'>" + content +
        "</get-schema>";
};
const auto readAs = [](Text defaults) {
    return "<get-config><source><running/></source>"
           "<with-defaults xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults'>" +
        defaults + "</with-defaults></get-config>";
};
const auto actionOf = [](Text content) {
    return "<action xmlns='urn:ietf:params:xml:ns:yang:1'>" + content + "</action>";
};
const auto tagged = [](Text tag) { return HasSubstr("<error-tag>" + tag + "</error-tag>"); };

// Everything that a session runs on, and what it says to its client.
class Wire : public Transport, public std::enable_shared_from_this<Wire> {
public:
    void send(std::string bytes) override { sent += bytes; }
    void endSession() override { hasEnded = true; }
    void post(std::function<void()> action) override
    {
        const std::lock_guard lock(mutex_);
        actions_.push_back(std::move(action));
        posted_.notify_all();
    }
    // Runs what was posted, and waits for it if nothing was yet.
    bool runOne(std::chrono::milliseconds limit = std::chrono::seconds(10))
    {
        std::unique_lock lock(mutex_);
        if (!posted_.wait_for(lock, limit, [this] { return !actions_.empty(); }))
            return false;
        const auto action = std::move(actions_.front());
        actions_.pop_front();
        lock.unlock();
        action();
        return true;
    }

    std::string sent;
    bool hasEnded = false;

private:
    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<std::function<void()>> actions_;
};

struct Client {
    std::shared_ptr<Wire> wire = std::make_shared<Wire>();
    std::shared_ptr<Session> session;

    std::string id() const { return std::to_string(session->record()->id); }

    // What came since the last time.
    std::string take() { return std::exchange(wire->sent, {}); }

    // The answer to one message in end-of-message framing, without the framing.
    std::string ask(const std::string &message)
    {
        take();
        session->receive(message + kEnd);
        while (!wire->hasEnded && wire->sent.empty())
            if (!wire->runOne())
                return "no answer";
        const std::string reply = take();
        return reply.substr(0, reply.rfind(kEnd));
    }

    // The same for the content of an <rpc>.
    std::string rpc(const std::string &operation) { return ask(rpcOf(operation)); }
};

class Server {
public:
    explicit Server(const std::string &running = "{}")
        : bench(running)
        , audit(bench.folder.path() / "audit.log")
        , dispatcher(bench.toy().host(), bench.stores(), sessions, worker, audit)
    {
    }

    // What still runs uses everything below the worker.
    ~Server() { EXPECT_TRUE(worker.stop(std::chrono::steady_clock::now() + std::chrono::seconds(10))); }

    Client connect(const std::string &hello = kHello10)
    {
        Client client;
        client.session = std::make_shared<Session>(
            dispatcher, client.wire, sessions.begin("admin", "127.0.0.1:1", [] {}), std::size_t{100000});
        client.session->start();
        client.session->receive(hello);
        return client;
    }

    std::string auditTrail() const { return readFile(bench.folder.path() / "audit.log"); }

    StoresBench bench;
    Audit audit;
    Sessions sessions;
    Worker worker{4};
    Dispatcher dispatcher;
};

class Netconf : public testing::Test {
protected:
    Server server;
    Client client = server.connect();
};

TEST_F(Netconf, SaysWhatItCan)
{
    const std::string hello = client.take();
    for (const char *capability :
         {"netconf:base:1.0<", "netconf:base:1.1<", "writable-running:1.0", "candidate:1.0",
          "confirmed-commit:1.1", "rollback-on-error:1.0", "validate:1.1", "startup:1.0", "xpath:1.0",
          "with-defaults:1.0?basic-mode=explicit&amp;also-supported=report-all,report-all-tagged,trim",
          "yang-library:1.1?revision=2019-01-04&amp;content-id="})
        EXPECT_THAT(hello, HasSubstr(capability));
    EXPECT_THAT(hello, HasSubstr("<session-id>" + client.id() + "</session-id>"));
    EXPECT_THAT(hello, testing::EndsWith("]]>]]>"));
    // A module of YANG 1.1 stands in the library only.
    EXPECT_THAT(hello, Not(HasSubstr("urn:test:toy")));
    EXPECT_THAT(hello, HasSubstr("urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults?module="));
}

TEST(Hello, OfTheClientChoosesTheFraming)
{
    Server server;
    Client client = server.connect(kHello11);
    client.take();
    client.session->receive(framed(rpcOf(kDiscard), Framing::chunked));
    ASSERT_TRUE(client.wire->runOne());
    EXPECT_EQ(client.take(), "\n#" + std::to_string(kDone.size()) + "\n" + kDone + "\n##\n");
}

TEST(Hello, ThatIsBadEndsTheSession)
{
    Server server;
    for (const std::string &hello :
         {std::string("<hello/>"), std::string("nothing"), based("rpc", ""), based("hello", ""),
          helloOf("urn:x"), helloOf("urn:ietf:params:netconf:base:1.0", "<session-id>4</session-id>")}) {
        const Client client = server.connect(hello + kEnd);
        EXPECT_TRUE(client.wire->hasEnded) << hello;
    }
    EXPECT_EQ(server.sessions.inBadHellos, 6U);
}

std::string errorOf(const std::string &type, const std::string &tag, const std::string &message,
                    const std::string &info = {})
{
    return "<rpc-error><error-type>" + type + "</error-type><error-tag>" + tag +
        "</error-tag><error-severity>error</error-severity><error-message xml:lang=\"en\">" + message +
        "</error-message>" + (info.empty() ? "" : "<error-info>" + info + "</error-info>") +
        "</rpc-error></rpc-reply>";
}

TEST_F(Netconf, RefusesWithAnRpcErrorAndGoesOn)
{
    std::string deep;
    for (int i = 0; i < 200; ++i)
        deep.insert(0, "<a>").append("</a>");
    const std::string malformed = "malformed-message", unsupported = "operation-not-supported";
    const struct {
        std::string message, tag;
    } table[] = {
        {"hello there", malformed},
        {rpcOf("<get/>") + rpcOf("<get/>"), malformed},
        {"<rpc>\xff</rpc>", malformed},
        {R"(<!DOCTYPE r [<!ENTITY a "aaaaa"><!ENTITY b "&a;&a;&a;">]><rpc>&b;</rpc>)", malformed},
        {rpcOf(deep), malformed},
        {"<rpc message-id='1'><get/></rpc>", "unknown-namespace"},
        {rpcOf("<get/><get/>"), "bad-element"},
        {rpcOf("<reboot xmlns='urn:x'/>"), "unknown-namespace"},
        {rpcOf("<top xmlns='urn:test:toy'/>"), unsupported},
        {rpcOf("<get><depth>1</depth></get>"), "unknown-element"},
        {rpcOf("<get><filter xmlns='urn:x'/></get>"), "unknown-namespace"},
        {rpcOf("<get><filter/><filter/></get>"), "bad-element"},
        {rpcOf("<get-config><source><running/><startup/></source></get-config>"), "bad-element"},
        {rpcOf("<get><filter type='regex'/></get>"), "bad-attribute"},
        {rpcOf("<get><filter type='xpath' select='/x:a'/></get>"), "invalid-value"},
        {rpcOf(readAs("all")), "invalid-value"},
        {rpcOf("<edit-config><target><startup/></target><config/></edit-config>"), unsupported},
        {rpcOf("<edit-config><target><running/></target><url>file:///etc/passwd</url></edit-config>"),
         "missing-element"},
        {rpcOf(editOf("", "<default-operation>delete</default-operation>")), "invalid-value"},
        {rpcOf("<copy-config><target><running/></target><source><running/></source></copy-config>"),
         "invalid-value"},
        {rpcOf("<delete-config><target><running/></target></delete-config>"), unsupported},
        {rpcOf("<commit><confirmed/><confirm-timeout>0</confirm-timeout></commit>"), "invalid-value"},
        {rpcOf(killOf("99")), "invalid-value"},
        {rpcOf(schemaOf("<identifier>../../etc/passwd</identifier>")), "invalid-value"},
        {rpcOf(schemaOf("<identifier>toy</identifier><format>yin</format>")), "invalid-value"},
        {rpcOf(actionOf("")), "missing-element"},
        {rpcOf(actionOf(top("<plain/>"))), unsupported},
    };
    for (const auto &[message, tag] : table) {
        EXPECT_THAT(client.ask(message), tagged(tag)) << message;
        EXPECT_FALSE(client.wire->hasEnded) << message;
        EXPECT_EQ(client.rpc(kGetRunning), kNothing) << message;
    }
}

TEST_F(Netconf, RepliesWithTheAttributesOfTheRequest)
{
    EXPECT_EQ(client.ask("<rpc message-id='a&lt;\"' xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' "
                         "xmlns:ex='urn:e' ex:user='fred'><discard-changes/></rpc>"),
              "<rpc-reply message-id=\"a&lt;&quot;\" xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\" "
              "xmlns:ex=\"urn:e\" ex:user=\"fred\"><ok/></rpc-reply>");
    EXPECT_EQ(client.ask("<nc:rpc message-id='2' xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0'>"
                         "<nc:discard-changes/></nc:rpc>"),
              "<nc:rpc-reply message-id=\"2\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">"
              "<ok xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"/></nc:rpc-reply>");
}

TEST_F(Netconf, SaysWhereAndWhatIsWrong)
{
    Client other = server.connect();
    EXPECT_EQ(client.ask(based("rpc", "<get/>")),
              "<rpc-reply xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" +
                  errorOf("rpc", "missing-attribute", "The attribute message-id is missing.",
                          "<bad-attribute>message-id</bad-attribute><bad-element>rpc</bad-element>"));
    server.bench.toy().failAt("apply", "/toy:top/entry[name='a']", kDeviceText, "no <room>");
    EXPECT_EQ(client.rpc(editOf("<entry><name>a</name></entry>")),
              std::string(kReply) +
                  "<rpc-error><error-type>application</error-type><error-tag>operation-failed</error-tag>"
                  "<error-severity>error</error-severity><error-app-tag>1042</error-app-tag>"
                  "<error-path xmlns:toy=\"urn:test:toy\">/toy:top/entry[name='a']</error-path>"
                  "<error-message xml:lang=\"en\">no &lt;room&gt;</error-message></rpc-error></rpc-reply>");
    EXPECT_EQ(other.rpc(lockOf("running")), kDone);
    EXPECT_EQ(client.rpc(lockOf("running")),
              kReply +
                  errorOf("protocol", "lock-denied", "The lock is held already.",
                          "<session-id>" + other.id() + "</session-id>"));
}

TEST_F(Netconf, ReadsAndWritesTheDatastores)
{
    const std::string data = kReply + ("<data>" + top("<plain>b</plain>") + "</data></rpc-reply>");
    EXPECT_EQ(client.rpc(editOf("<plain>b</plain>",
                                "<test-option>set</test-option>"
                                "<error-option>rollback-on-error</error-option>")),
              kDone);
    EXPECT_EQ(client.rpc(kGetRunning), data);
    EXPECT_EQ(client.rpc("<get-config><source><running/></source><filter type='xpath' xmlns:t='urn:test:toy' "
                         "select='/t:top/t:plain'/></get-config>"),
              data);
    // Elements without a namespace, as clients write them who give a bare string.
    EXPECT_EQ(client.rpc("<get><filter xmlns=''>" + top("<plain/>") + "</filter></get>"), data);
    EXPECT_THAT(client.rpc(readAs("report-all")), HasSubstr("<number>7</number>"));
    EXPECT_EQ(
        client.rpc("<validate><source><config>" + top("<plain>c</plain>") + "</config></source></validate>"),
        kDone);
    EXPECT_THAT(
        client.rpc(schemaOf("<identifier>toy</identifier><version>2024-01-01</version>")),
        AllOf(HasSubstr("<data xmlns=\"urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring\">module toy {"),
              HasSubstr("presence &quot;it is on&quot;")));
    EXPECT_THAT(server.auditTrail(),
                HasSubstr("netconf user=\"admin\" from=127.0.0.1:1 "
                          "request=\"edit-config running\" outcome=\"ok\""));
    EXPECT_THAT(server.auditTrail(), Not(HasSubstr("get-config")));
}

Status poke(tk::Session *, tk::Request *msg, tk::Value *, tk::Value *)
{
    const tk::Value *input = agt_get_rpc_input(msg);
    if (!input)
        return kOk;
    tk::Object *felt = obj_find_child(obj_find_child(msg->method, "toy", "output"), "toy", "felt");
    const std::string text = std::string("felt ") + val_get_string(val_find_child(input, "toy", "how"));
    Status status = kOk;
    agt_rpc_add_return_val(agt_make_leaf(felt, "felt", text.c_str(), &status), msg);
    return status;
}

TEST(Operations, OfTheBundleTakeInputAndGiveOutput)
{
    Server server(R"({"entry":[{"name":"e"}]})");
    Client client = server.connect();
    agt_rpc_register_method("toy", "add", tk::operationInvoke, ::test::addUp);
    agt_action_register_action("/t:top/t:entry/t:poke", tk::operationInvoke, poke);
    EXPECT_EQ(client.rpc("<t:add xmlns:t='urn:test:toy'><t:a>4</t:a><t:b>1</t:b></t:add>"),
              std::string(kReply) + "<response xmlns=\"urn:test:toy\"><sum>5</sum></response></rpc-reply>");
    EXPECT_THAT(client.rpc("<add xmlns='urn:test:toy'><a>much</a></add>"), HasSubstr("invalid-value"));
    const auto action = [](const std::string &input) {
        return actionOf(top("<entry><name>e</name><poke>" + input + "</poke></entry>"));
    };
    EXPECT_EQ(client.rpc(action("<how>hard</how>")),
              std::string(kReply) + "<felt xmlns=\"urn:test:toy\">felt hard</felt></rpc-reply>");
    EXPECT_EQ(client.rpc(action("")), kDone);
    EXPECT_THAT(client.rpc(actionOf(top("<entry><poke/></entry>"))), HasSubstr("missing-element"));
    EXPECT_THAT(server.auditTrail(), AllOf(HasSubstr("rpc add"), HasSubstr("request=\"action\"")));
}

TEST_F(Netconf, EndsAClosedSessionBehindTheReply)
{
    EXPECT_EQ(client.rpc("<close-session/>"), kDone);
    EXPECT_TRUE(client.wire->hasEnded);
    EXPECT_TRUE(client.session->endsOrderly());
    client.session->receive("<more/>]]>]]>");
    EXPECT_EQ(client.take(), "");
}

TEST(KillSession, OfOneThatIsInACallbackTakesEffectWhenTheCallbackEnds)
{
    Server server;
    Client victim = server.connect(), killer = server.connect();
    EXPECT_EQ(victim.rpc(lockOf("running")), kDone);
    ::test::SlowDevice device(server.bench.toy());
    victim.session->receive(rpcOf(editOf("<plain>x</plain>")) + kEnd + rpcOf(editOf("<plain>never</plain>")) +
                            kEnd);
    device.awaitCall();
    EXPECT_EQ(killer.rpc(killOf(victim.id())), kDone);
    // What needs no callback is answered meanwhile, with the values before the edit.
    EXPECT_EQ(killer.rpc(kGetRunning), kNothing);
    device.answer();
    EXPECT_EQ(killer.rpc(lockOf("running")), kDone);
    EXPECT_EQ(server.bench.running(), top("<plain>x</plain>"));
    EXPECT_THAT(killer.rpc(killOf(killer.id())), tagged("invalid-value"));
}

TEST(Waiting, IsBoundedAndRefusedBeyond)
{
    Server server;
    std::vector<Client> clients;
    for (int i = 0; i < 7; ++i)
        clients.push_back(server.connect());
    EXPECT_EQ(clients[6].rpc(lockOf("startup")), kDone);
    ::test::SlowDevice device(server.bench.toy());
    clients[0].session->receive(rpcOf(editOf("<plain>x</plain>")) + kEnd);
    device.awaitCall();
    for (std::size_t i = 1; i < 6; ++i)
        clients[i].session->receive(rpcOf(kDiscard) + kEnd);
    ASSERT_TRUE(clients[5].wire->runOne());
    EXPECT_THAT(clients[5].take(), tagged("resource-denied"));
    // A session that ends now gives back its locks with the next request that is carried out.
    clients[6].session->end();
    EXPECT_FALSE(server.dispatcher.release(clients[6].session->record()));
    device.answer();
    for (std::size_t i = 0; i < 5; ++i)
        ASSERT_TRUE(clients[i].wire->runOne());
    EXPECT_EQ(clients[5].rpc(lockOf("startup")), kDone);
}

TEST_F(Netconf, AnswersMessagesOneBehindTheOtherInOrder)
{
    client.take();
    std::string all;
    for (int i = 0; i < 20; ++i)
        all += based("rpc message-id='" + std::to_string(i) + "'", i % 2 ? kDiscard : kGetRunning) + kEnd;
    client.session->receive(all);
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(client.wire->runOne());
        EXPECT_THAT(client.take(), HasSubstr("message-id=\"" + std::to_string(i) + "\""));
    }
}

TEST(Framings, ThatAreBrokenEndTheSessionAndNoOther)
{
    Server server;
    Client other = server.connect(), client = server.connect(kHello11);
    client.session->receive("\n#-5\n");
    EXPECT_TRUE(client.wire->hasEnded);
    EXPECT_FALSE(client.session->endsOrderly());
    EXPECT_EQ(other.rpc(kDiscard), kDone);
}

} // namespace
} // namespace agentd::netconf
