// Sessions without a connection: what a client sends, and every byte that it gets back.
#include "server/netconf/session.h"
#include "tests/unit/netconf/stores_bench.h"

#include <deque>
#include <fstream>
#include <future>
#include <gmock/gmock.h>
#include <sstream>

namespace agentd::netconf {
namespace {

using ::test::StoresBench;
using ::test::top;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr char kHello10[] =
    "<hello xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><capabilities>"
    "<capability>urn:ietf:params:netconf:base:1.0</capability></capabilities></hello>]]>]]>";
constexpr char kHello11[] =
    "<hello xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><capabilities>"
    "<capability> urn:ietf:params:netconf:base:1.1\n</capability></capabilities></hello>]]>]]>";
constexpr char kReply[] = "<rpc-reply message-id=\"1\" xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">";

std::string rpcOf(const std::string &operation)
{
    return "<rpc message-id='1' xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'>" + operation + "</rpc>";
}

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
    bool wasKilled = false;

    std::uint32_t id() const { return session->record()->id; }

    // What came since the last time.
    std::string take() { return std::exchange(wire->sent, {}); }

    // The answer to one message in end-of-message framing, without the framing.
    std::string ask(const std::string &message)
    {
        take();
        session->receive(message + "]]>]]>");
        while (!wire->hasEnded && wire->sent.empty())
            if (!wire->runOne())
                return "no answer";
        const std::string reply = take();
        return reply.substr(0, reply.rfind("]]>]]>"));
    }

    // The same for the content of an <rpc>.
    std::string rpc(const std::string &operation)
    {
        return ask("<rpc message-id=\"1\" xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" + operation +
                   "</rpc>");
    }
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

    void disconnect(Client &client)
    {
        client.session->end();
        sessions.end(client.session->record(), false);
        EXPECT_TRUE(dispatcher.release(client.session->record()));
    }

    std::string auditTrail() const
    {
        std::ifstream in(bench.folder.path() / "audit.log");
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    StoresBench bench;
    Audit audit;
    Sessions sessions;
    Worker worker{4};
    Dispatcher dispatcher;
};

TEST(Hello, SaysWhatTheServerCan)
{
    Server server;
    Client client = server.connect();
    const std::string hello = client.take();
    for (const char *capability :
         {"netconf:base:1.0<", "netconf:base:1.1<", "writable-running:1.0", "candidate:1.0",
          "confirmed-commit:1.1", "rollback-on-error:1.0", "validate:1.1", "startup:1.0", "xpath:1.0",
          "with-defaults:1.0?basic-mode=explicit&amp;also-supported=report-all,report-all-tagged,trim",
          "yang-library:1.1?revision=2019-01-04&amp;content-id="})
        EXPECT_THAT(hello, HasSubstr(capability));
    EXPECT_THAT(hello, HasSubstr("<session-id>" + std::to_string(client.id()) + "</session-id>"));
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
    client.session->receive(framed(rpcOf("<discard-changes/>"), Framing::chunked));
    ASSERT_TRUE(client.wire->runOne());
    const std::string reply = std::string(kReply) + "<ok/></rpc-reply>";
    EXPECT_EQ(client.take(), "\n#" + std::to_string(reply.size()) + "\n" + reply + "\n##\n");
}

TEST(Hello, ThatIsBadEndsTheSession)
{
    Server server;
    const std::string base = "urn:ietf:params:xml:ns:netconf:base:1.0";
    for (const std::string &hello :
         {std::string("<hello/>"), std::string("nothing"), "<rpc xmlns=\"" + base + "\"/>",
          "<hello xmlns=\"" + base + "\"/>",
          "<hello xmlns=\"" + base + "\"><capabilities><capability>urn:x</capability></capabilities></hello>",
          "<hello xmlns=\"" + base +
              "\"><capabilities><capability>urn:ietf:params:netconf:base:1.0</capability></capabilities>"
              "<session-id>4</session-id></hello>"}) {
        Client client = server.connect(hello + "]]>]]>");
        EXPECT_TRUE(client.wire->hasEnded) << hello;
    }
    EXPECT_EQ(server.sessions.inBadHellos, 6U);
}

std::string errorOf(const std::string &type, const std::string &tag, const std::string &message,
                    const std::string &info = {})
{
    return "<rpc-error><error-type>" + type + "</error-type><error-tag>" + tag +
        "</error-tag><error-severity>error</error-severity><error-message xml:lang=\"en\">" + message +
        "</error-message>" + (info.empty() ? "" : "<error-info>" + info + "</error-info>") + "</rpc-error>";
}

struct BadMessage {
    std::string name, message, tag;

    friend std::ostream &operator<<(std::ostream &out, const BadMessage &c) { return out << c.message; }
};

std::string nested(int levels)
{
    std::string text;
    for (int i = 0; i < levels; ++i)
        text.insert(0, "<a>").append("</a>");
    return text;
}

const BadMessage kBadMessages[] = {
    {"not_xml", "hello there", "malformed-message"},
    {"not_closed", "<rpc><get>", "malformed-message"},
    {"two_roots", rpcOf("<get/>") + rpcOf("<get/>"), "malformed-message"},
    {"not_utf8", "<rpc>\xff</rpc>", "malformed-message"},
    {"an_entity_bomb",
     "<!DOCTYPE r [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]><rpc>&b;</rpc>",
     "malformed-message"},
    {"nested_too_deeply", rpcOf(nested(200)), "malformed-message"},
    {"no_namespace", "<rpc message-id='1'><get/></rpc>", "unknown-namespace"},
    {"a_wrong_namespace", "<rpc message-id='1' xmlns='urn:x'><get/></rpc>", "unknown-namespace"},
    {"another_root", "<notification xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'/>", "unknown-element"},
    {"no_message_id", "<rpc xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'><get/></rpc>",
     "missing-attribute"},
    {"no_operation", rpcOf(""), "missing-element"},
    {"two_operations", rpcOf("<get/><get/>"), "bad-element"},
    {"an_unknown_operation", rpcOf("<reboot/>"), "operation-not-supported"},
    {"an_operation_of_an_unknown_module", rpcOf("<reboot xmlns='urn:x'/>"), "unknown-namespace"},
    {"an_unknown_operation_of_a_module", rpcOf("<reboot xmlns='urn:test:toy'/>"), "operation-not-supported"},
    {"data_as_an_operation", rpcOf("<top xmlns='urn:test:toy'/>"), "operation-not-supported"},
    {"an_undeclared_prefix", rpcOf("<x:get/>"), "unknown-namespace"},
    {"an_unknown_parameter", rpcOf("<get><depth>1</depth></get>"), "unknown-element"},
    {"a_parameter_of_another_namespace", rpcOf("<get><filter xmlns='urn:x'/></get>"), "unknown-namespace"},
    {"a_parameter_twice", rpcOf("<get><filter/><filter/></get>"), "bad-element"},
    {"no_source", rpcOf("<get-config/>"), "missing-element"},
    {"an_empty_source", rpcOf("<get-config><source/></get-config>"), "missing-element"},
    {"an_unknown_source", rpcOf("<get-config><source><history/></source></get-config>"), "unknown-element"},
    {"two_sources", rpcOf("<get-config><source><running/><startup/></source></get-config>"), "bad-element"},
    {"an_unknown_filter", rpcOf("<get><filter type='regex'/></get>"), "bad-attribute"},
    {"an_xpath_filter_without_expression", rpcOf("<get><filter type='xpath'/></get>"), "missing-attribute"},
    {"an_xpath_filter_with_an_unknown_prefix", rpcOf("<get><filter type='xpath' select='/x:a'/></get>"),
     "invalid-value"},
    {"unknown_defaults",
     rpcOf("<get><with-defaults xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults'>all"
           "</with-defaults></get>"),
     "invalid-value"},
    {"an_edit_of_startup", rpcOf("<edit-config><target><startup/></target><config/></edit-config>"),
     "operation-not-supported"},
    {"an_edit_without_config", rpcOf("<edit-config><target><running/></target></edit-config>"),
     "missing-element"},
    {"an_edit_by_address",
     rpcOf("<edit-config><target><running/></target><url>file:///etc/passwd</url></edit-config>"),
     "missing-element"},
    {"an_unknown_default_operation",
     rpcOf("<edit-config><target><running/></target><default-operation>delete</default-operation><config/>"
           "</edit-config>"),
     "invalid-value"},
    {"an_unknown_error_option",
     rpcOf("<edit-config><target><running/></target><error-option>ignore</error-option><config/>"
           "</edit-config>"),
     "invalid-value"},
    {"a_copy_to_itself",
     rpcOf("<copy-config><target><running/></target><source><running/></source></copy-config>"),
     "invalid-value"},
    {"deletion_of_running", rpcOf("<delete-config><target><running/></target></delete-config>"),
     "operation-not-supported"},
    {"a_timeout_of_zero", rpcOf("<commit><confirmed/><confirm-timeout>0</confirm-timeout></commit>"),
     "invalid-value"},
    {"a_timeout_without_confirmed", rpcOf("<commit><confirm-timeout>5</confirm-timeout></commit>"),
     "bad-element"},
    {"a_persist_id_of_nothing", rpcOf("<commit><persist-id>x</persist-id></commit>"), "invalid-value"},
    {"a_cancel_of_nothing", rpcOf("<cancel-commit/>"), "operation-failed"},
    {"an_unlock_of_nothing", rpcOf("<unlock><target><running/></target></unlock>"), "operation-failed"},
    {"a_kill_of_nobody", rpcOf("<kill-session><session-id>99</session-id></kill-session>"), "invalid-value"},
    {"a_kill_without_number", rpcOf("<kill-session/>"), "missing-element"},
    {"a_schema_that_is_not_there",
     rpcOf("<get-schema xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring'>"
           "<identifier>../../etc/passwd</identifier></get-schema>"),
     "invalid-value"},
    {"a_schema_in_another_language",
     rpcOf("<get-schema xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring'>"
           "<identifier>toy</identifier><format>yin</format></get-schema>"),
     "invalid-value"},
    {"an_action_that_is_none", rpcOf("<action xmlns='urn:ietf:params:xml:ns:yang:1'/>"), "missing-element"},
    {"an_action_on_a_leaf",
     rpcOf("<action xmlns='urn:ietf:params:xml:ns:yang:1'><top xmlns='urn:test:toy'><plain/></top></action>"),
     "operation-not-supported"},
};

class Refuses : public testing::TestWithParam<BadMessage> { };

TEST_P(Refuses, WithAnRpcErrorAndGoesOn)
{
    Server server;
    Client client = server.connect();
    const std::string reply = client.ask(GetParam().message);
    EXPECT_THAT(reply, HasSubstr("<error-tag>" + GetParam().tag + "</error-tag>"));
    EXPECT_THAT(reply, HasSubstr("<error-severity>error</error-severity>"));
    EXPECT_FALSE(client.wire->hasEnded);
    EXPECT_EQ(client.rpc("<get-config><source><running/></source></get-config>"),
              std::string(kReply) + "<data></data></rpc-reply>");
}

INSTANTIATE_TEST_SUITE_P(Table, Refuses, testing::ValuesIn(kBadMessages),
                         [](const auto &of) { return of.param.name; });

TEST(Replies, HaveTheAttributesOfTheRequest)
{
    Server server;
    Client client = server.connect();
    EXPECT_EQ(client.ask("<rpc message-id='a&lt;\"' xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' "
                         "xmlns:ex='urn:e' ex:user='fred'><discard-changes/></rpc>"),
              "<rpc-reply message-id=\"a&lt;&quot;\" xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\" "
              "xmlns:ex=\"urn:e\" ex:user=\"fred\"><ok/></rpc-reply>");
    EXPECT_EQ(client.ask("<nc:rpc message-id='2' xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0'>"
                         "<nc:discard-changes/></nc:rpc>"),
              "<nc:rpc-reply message-id=\"2\" xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\">"
              "<ok xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"/></nc:rpc-reply>");
}

TEST(Replies, ToErrorsSayWhereAndWhatIsWrong)
{
    Server server;
    Client client = server.connect();
    EXPECT_EQ(client.ask("<rpc xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'><get/></rpc>"),
              "<rpc-reply xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\">" +
                  errorOf("rpc", "missing-attribute", "The attribute message-id is missing.",
                          "<bad-attribute>message-id</bad-attribute><bad-element>rpc</bad-element>") +
                  "</rpc-reply>");
    server.bench.toy().failAt("apply", "/toy:top/entry[name='a']", kDeviceText, "no <room>");
    const std::string edit = "<edit-config><target><running/></target><config>" +
        top("<entry><name>a</name></entry>") + "</config></edit-config>";
    EXPECT_EQ(client.rpc(edit),
              std::string(kReply) +
                  "<rpc-error><error-type>application</error-type><error-tag>operation-failed</error-tag>"
                  "<error-severity>error</error-severity><error-app-tag>1042</error-app-tag>"
                  "<error-path xmlns:toy=\"urn:test:toy\">/toy:top/entry[name='a']</error-path>"
                  "<error-message xml:lang=\"en\">no &lt;room&gt;</error-message></rpc-error></rpc-reply>");
    Client other = server.connect();
    EXPECT_THAT(other.rpc("<lock><target><running/></target></lock>"), HasSubstr("<ok/>"));
    EXPECT_EQ(client.rpc("<lock><target><running/></target></lock>"),
              std::string(kReply) +
                  errorOf("protocol", "lock-denied", "The lock is held already.",
                          "<session-id>" + std::to_string(other.id()) + "</session-id>") +
                  "</rpc-reply>");
}

TEST(Operations, ReadAndWriteTheDatastores)
{
    Server server(R"({"plain":"a"})");
    Client client = server.connect();
    const std::string data = "<data>" + top("<plain>b</plain>") + "</data>";
    EXPECT_EQ(client.rpc("<edit-config><target><running/></target><test-option>set</test-option>"
                         "<error-option>rollback-on-error</error-option><config>" +
                         top("<plain>b</plain>") + "</config></edit-config>"),
              std::string(kReply) + "<ok/></rpc-reply>");
    EXPECT_EQ(client.rpc("<get-config><source><running/></source></get-config>"),
              std::string(kReply) + data + "</rpc-reply>");
    EXPECT_EQ(client.rpc("<get-config><source><running/></source><filter type='xpath' xmlns:t='urn:test:toy' "
                         "select='/t:top/t:plain'/></get-config>"),
              std::string(kReply) + data + "</rpc-reply>");
    // Elements without a namespace, as clients write them who give a bare string.
    EXPECT_EQ(client.rpc("<get><filter xmlns=''>" + top("<plain/>") + "</filter></get>"),
              std::string(kReply) + data + "</rpc-reply>");
    EXPECT_THAT(client.rpc("<get-config><source><running/></source>"
                           "<with-defaults xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults'>"
                           "report-all</with-defaults></get-config>"),
                HasSubstr("<number>7</number>"));
    EXPECT_THAT(
        client.rpc("<validate><source><config>" + top("<plain>c</plain>") + "</config></source></validate>"),
        HasSubstr("<ok/>"));
    EXPECT_THAT(
        client.rpc("<get-schema xmlns='urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring'>"
                   "<identifier>toy</identifier><version>2024-01-01</version></get-schema>"),
        AllOf(HasSubstr("<data xmlns=\"urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring\">module toy {"),
              HasSubstr("presence &quot;it is on&quot;")));
    EXPECT_THAT(server.auditTrail(),
                HasSubstr("netconf user=\"admin\" from=127.0.0.1:1 request=\"edit-config running\" "
                          "outcome=\"ok\""));
    EXPECT_THAT(server.auditTrail(), Not(HasSubstr("get-config")));
}

Status addUp(tk::Session *, tk::Request *msg, tk::Value *)
{
    const tk::Value *input = agt_get_rpc_input(msg);
    const auto a = val_get_int64(val_find_child(input, "toy", "a"));
    tk::Object *response = obj_find_child(obj_find_child(msg->method, "toy", "output"), "toy", "response");
    Status status = kOk;
    agt_rpc_add_return_val(agt_make_int_leaf(obj_find_child(response, "toy", "sum"), "sum",
                                             static_cast<std::int32_t>(a + 1), &status),
                           msg);
    return status;
}

Status poke(tk::Session *, tk::Request *msg, tk::Value *, tk::Value *)
{
    const tk::Value *input = agt_get_rpc_input(msg);
    const std::string how = input ? val_get_string(val_find_child(input, "toy", "how")) : "";
    if (how.empty())
        return kOk;
    tk::Object *felt = obj_find_child(obj_find_child(msg->method, "toy", "output"), "toy", "felt");
    Status status = kOk;
    const std::string text = "felt " + how;
    agt_rpc_add_return_val(agt_make_leaf(felt, "felt", text.c_str(), &status), msg);
    return status;
}

TEST(Operations, OfTheBundleTakeInputAndGiveOutput)
{
    Server server(R"({"entry":[{"name":"e"}]})");
    Client client = server.connect();
    agt_rpc_register_method("toy", "add", tk::operationInvoke, addUp);
    agt_action_register_action("/t:top/t:entry/t:poke", tk::operationInvoke, poke);
    EXPECT_EQ(client.rpc("<t:add xmlns:t='urn:test:toy'><t:a>4</t:a></t:add>"),
              std::string(kReply) + "<response xmlns=\"urn:test:toy\"><sum>5</sum></response></rpc-reply>");
    EXPECT_THAT(client.rpc("<add xmlns='urn:test:toy'><a>much</a></add>"), HasSubstr("invalid-value"));
    const auto action = [](const std::string &input) {
        return "<action xmlns='urn:ietf:params:xml:ns:yang:1'>" +
            top("<entry><name>e</name><poke>" + input + "</poke></entry>") + "</action>";
    };
    EXPECT_EQ(client.rpc(action("<how>hard</how>")),
              std::string(kReply) + "<felt xmlns=\"urn:test:toy\">felt hard</felt></rpc-reply>");
    EXPECT_EQ(client.rpc(action("")), std::string(kReply) + "<ok/></rpc-reply>");
    EXPECT_THAT(client.rpc("<action xmlns='urn:ietf:params:xml:ns:yang:1'>" + top("<entry><poke/></entry>") +
                           "</action>"),
                HasSubstr("missing-element"));
    EXPECT_THAT(server.auditTrail(), AllOf(HasSubstr("rpc add"), HasSubstr("request=\"action\"")));
}

TEST(CloseSession, EndsTheSessionBehindTheReply)
{
    Server server;
    Client client = server.connect();
    EXPECT_EQ(client.rpc("<close-session/>"), std::string(kReply) + "<ok/></rpc-reply>");
    EXPECT_TRUE(client.wire->hasEnded);
    EXPECT_TRUE(client.session->endsOrderly());
    client.session->receive("<more/>]]>]]>");
    EXPECT_EQ(client.take(), "");
}

// Holds the first callback up until it is told to go on.
class SlowDevice {
public:
    explicit SlowDevice(StoresBench &bench)
    {
        bench.toy().watch = [this](const std::string &line, tk::Value *, tk::Value *) {
            if (line.rfind("apply", 0) != 0)
                return;
            reached_.set_value();
            go_.get_future().wait();
        };
    }
    void awaitCall() { reached_.get_future().wait(); }
    void answer() { go_.set_value(); }

private:
    std::promise<void> reached_, go_;
};

TEST(KillSession, OfOneThatIsInACallbackTakesEffectWhenTheCallbackEnds)
{
    Server server;
    Client victim = server.connect(), killer = server.connect();
    EXPECT_THAT(victim.rpc("<lock><target><running/></target></lock>"), HasSubstr("<ok/>"));
    SlowDevice device(server.bench);
    victim.take();
    victim.session->receive(rpcOf("<edit-config><target><running/></target><config>" +
                                  top("<plain>x</plain>") + "</config></edit-config>") +
                            "]]>]]>" +
                            rpcOf("<edit-config><target><running/></target><config>" +
                                  top("<plain>never</plain>") + "</config></edit-config>") +
                            "]]>]]>");
    device.awaitCall();
    EXPECT_THAT(killer.rpc("<kill-session><session-id>" + std::to_string(victim.id()) +
                           "</session-id></kill-session>"),
                HasSubstr("<ok/>"));
    // What needs no callback is answered meanwhile, with the values before the edit.
    EXPECT_EQ(killer.rpc("<get-config><source><running/></source></get-config>"),
              std::string(kReply) + "<data></data></rpc-reply>");
    device.answer();
    EXPECT_THAT(killer.rpc("<lock><target><running/></target></lock>"), HasSubstr("<ok/>"));
    EXPECT_EQ(server.bench.running(), top("<plain>x</plain>"));
    EXPECT_THAT(killer.rpc("<kill-session><session-id>" + std::to_string(killer.id()) +
                           "</session-id></kill-session>"),
                HasSubstr("<error-tag>invalid-value</error-tag>"));
}

TEST(Waiting, IsBoundedAndRefusedBeyond)
{
    Server server;
    std::vector<Client> clients;
    for (int i = 0; i < 7; ++i)
        clients.push_back(server.connect());
    EXPECT_THAT(clients[6].rpc("<lock><target><startup/></target></lock>"), HasSubstr("<ok/>"));
    SlowDevice device(server.bench);
    const std::string edit = rpcOf("<edit-config><target><running/></target><config>" +
                                   top("<plain>x</plain>") + "</config></edit-config>") +
        "]]>]]>";
    clients[0].session->receive(edit);
    device.awaitCall();
    for (std::size_t i = 1; i < 6; ++i)
        clients[i].session->receive(rpcOf("<discard-changes/>") + "]]>]]>");
    ASSERT_TRUE(clients[5].wire->runOne());
    EXPECT_THAT(clients[5].take(), HasSubstr("<error-tag>resource-denied</error-tag>"));
    // A session that ends now gives back its locks with the next request that is carried out.
    clients[6].session->end();
    EXPECT_FALSE(server.dispatcher.release(clients[6].session->record()));
    device.answer();
    for (std::size_t i = 0; i < 5; ++i)
        ASSERT_TRUE(clients[i].wire->runOne());
    EXPECT_THAT(clients[5].rpc("<lock><target><startup/></target></lock>"), HasSubstr("<ok/>"));
}

TEST(Messages, MayComeInTenThousandPieces)
{
    Server server;
    Client client = server.connect(kHello11);
    const std::string message =
        "<rpc message-id=\"1\" xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><!--" +
        std::string(10000, 'x') + "--><discard-changes/></rpc>";
    client.take();
    for (const char c : message)
        client.session->receive(std::string("\n#1\n") + c);
    client.session->receive("\n##\n");
    ASSERT_TRUE(client.wire->runOne());
    EXPECT_THAT(client.take(), HasSubstr("<ok/>"));
}

TEST(Messages, OneBehindTheOtherAreAnsweredInOrder)
{
    Server server;
    Client client = server.connect();
    client.take();
    std::string all;
    for (int i = 0; i < 20; ++i)
        all += "<rpc message-id='" + std::to_string(i) +
            "' xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'>" +
            (i % 2 ? "<discard-changes/>" : "<get-config><source><running/></source></get-config>") +
            "</rpc>]]>]]>";
    client.session->receive(all);
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(client.wire->runOne());
        EXPECT_THAT(client.take(), HasSubstr("message-id=\"" + std::to_string(i) + "\""));
    }
}

TEST(Framings, ThatAreBrokenEndTheSessionAndNoOther)
{
    Server server;
    Client other = server.connect();
    for (const char *bytes : {"\nX5\n", "\n#-5\n", "\n#0\n", "\n#4294967295\n", "<rpc/>]]>]]>"}) {
        Client client = server.connect(kHello11);
        client.session->receive(bytes);
        EXPECT_TRUE(client.wire->hasEnded) << bytes;
        EXPECT_FALSE(client.session->endsOrderly());
    }
    EXPECT_THAT(other.rpc("<discard-changes/>"), HasSubstr("<ok/>"));
}

} // namespace
} // namespace agentd::netconf
