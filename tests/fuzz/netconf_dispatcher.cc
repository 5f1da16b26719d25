// Requests of a NETCONF client to a host with a toy module: every answer is a well-formed document, and the
// next session is served.
//
// The first byte of an input says what the rest is: a whole message, an operation, an edit, a filter and so
// on. Bytes above 0x7f stand for words that requests are made of, so that the fuzzer finds valid ones soon.
#include "server/netconf/session.h"
#include "tests/fuzz/words.h"
#include "tests/unit/netconf/stores_bench.h"

#include <algorithm>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <sanitizer/lsan_interface.h>

namespace {

using namespace agentd;
using namespace agentd::netconf;

constexpr const char *kWords[] = {
    "<top xmlns='urn:test:toy'>",
    "</top>",
    "<plain>",
    "</plain>",
    "<plain/>",
    "<words>",
    "</words>",
    "<number>",
    "</number>",
    "<form>",
    "</form>",
    "round",
    "t:round",
    "<inner><deep>x</deep></inner>",
    "<config>",
    "</config>",
    "<enabled>true</enabled>",
    "<limit>",
    "</limit>",
    "<marked/>",
    "<marked>",
    "</marked>",
    "<note>n</note>",
    "<lone/>",
    "<entry>",
    "</entry>",
    "<name>",
    "</name>",
    "<name>a</name>",
    "<name>b</name>",
    "<own>",
    "</own>",
    "<sub>",
    "</sub>",
    "<id>1</id>",
    "<text>",
    "</text>",
    "<ranked>",
    "</ranked>",
    "<first>1</first>",
    "<second>2</second>",
    "<state>",
    "</state>",
    "<poke>",
    "</poke>",
    "<how>h</how>",
    "<add xmlns='urn:test:toy'>",
    "</add>",
    "<a>1</a>",
    "<b>2</b>",
    " nc:operation='merge'",
    " nc:operation='replace'",
    " nc:operation='create'",
    " nc:operation='delete'",
    " nc:operation='remove'",
    " y:insert='first'",
    " y:insert='last'",
    " y:insert='before'",
    " y:insert='after'",
    " y:key=\"[name='a']\"",
    " y:value='w'",
    " wd:default='true'",
    " xmlns:x='urn:x'",
    "<running/>",
    "<candidate/>",
    "<startup/>",
    "<source>",
    "</source>",
    "<target>",
    "</target>",
    "<get>",
    "</get>",
    "<get-config>",
    "</get-config>",
    "<edit-config>",
    "</edit-config>",
    "<copy-config>",
    "</copy-config>",
    "<delete-config>",
    "</delete-config>",
    "<lock>",
    "</lock>",
    "<unlock>",
    "</unlock>",
    "<commit/>",
    "<commit><confirmed/></commit>",
    "<cancel-commit/>",
    "<discard-changes/>",
    "<validate>",
    "</validate>",
    "<close-session/>",
    "<kill-session><session-id>1</session-id>",
    "</kill-session>",
    "<filter>",
    "</filter>",
    "<filter type='xpath' select=\"",
    "\"/>",
    "/t:top",
    "/t:entry",
    "[t:name='a']",
    "[position()=1]",
    "count(",
    "//",
    "/*",
    "/..",
    "|",
    "::",
    "<url>",
    "</url>",
    "<!--",
    "-->",
    "<![CDATA[",
    "]]>",
    "&lt;",
    "&#x41;",
    "<?pi?>",
    "<default-operation>none</default-operation>",
    "<default-operation>replace</default-operation>",
    "<test-option>test-only</test-option>",
};
static_assert(std::size(kWords) <= 128);

std::string rpc(const std::string &operation)
{
    return "<rpc message-id='1' xmlns='urn:ietf:params:xml:ns:netconf:base:1.0' "
           "xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0' xmlns:y='urn:ietf:params:xml:ns:yang:1' "
           "xmlns:wd='urn:ietf:params:xml:ns:netconf:default:1.0' xmlns:t='urn:test:toy'>" +
        operation + "</rpc>";
}

std::string inTop(const std::string &text)
{
    return "<top xmlns='urn:test:toy'>" + text + "</top>";
}

std::string requestOf(unsigned kind, const std::string &text)
{
    switch (kind % 8) {
    case 0:
        return text;
    case 1:
        return rpc(text);
    case 2:
        return rpc("<edit-config><target><running/></target><config>" + inTop(text) +
                   "</config></edit-config>");
    case 3:
        return rpc("<edit-config><target><candidate/></target><config>" + inTop(text) +
                   "</config></edit-config>");
    case 4:
        return rpc("<get><filter>" + inTop(text) + "</filter></get>");
    case 5:
        return rpc("<get-config><source><running/></source><filter type='xpath' select=\"" + text +
                   "\"/></get-config>");
    case 6:
        return rpc("<action xmlns='urn:ietf:params:xml:ns:yang:1'>" + inTop(text) + "</action>");
    default:
        return rpc("<copy-config><target><running/></target><source><config>" + text +
                   "</config></source></copy-config>");
    }
}

// What the session says, and what other threads post to it.
class Wire : public Transport {
public:
    void send(std::string bytes) override { sent += bytes; }
    void endSession() override { hasEnded = true; }
    void post(std::function<void()> action) override
    {
        const std::lock_guard lock(mutex_);
        actions_.push_back(std::move(action));
        posted_.notify_all();
    }
    void runOne()
    {
        std::unique_lock lock(mutex_);
        posted_.wait(lock, [this] { return !actions_.empty(); });
        const auto action = std::move(actions_.front());
        actions_.pop_front();
        lock.unlock();
        action();
    }
    std::string sent;
    bool hasEnded = false;

private:
    std::mutex mutex_;
    std::condition_variable posted_;
    std::deque<std::function<void()>> actions_;
};

constexpr char kHello[] = "<hello xmlns='urn:ietf:params:xml:ns:netconf:base:1.0'><capabilities><capability>"
                          "urn:ietf:params:netconf:base:1.0</capability></capabilities></hello>]]>]]>";
constexpr std::string_view kEnd = "]]>]]>";

struct Server {
    ::test::StoresBench bench{
        R"({"plain":"p","words":["w"],"entry":[{"name":"a","own":"1"}],"ranked":[{"name":"a"}]})"};
    Audit audit{bench.folder.path() / "audit.log"};
    Sessions sessions;
    Worker worker{8};
    Dispatcher dispatcher{bench.toy().host(), bench.stores(), sessions, worker, audit};
};

void checkAnswers(std::string_view text)
{
    while (!text.empty()) {
        const auto end = text.find(kEnd);
        pugi::xml_document document;
        if (end == text.npos || !document.load_buffer(text.data(), end))
            std::abort(); // an answer that is no document
        text.remove_prefix(end + kEnd.size());
    }
}

// Sends the messages one after the other and waits for what comes back.
void converse(Server &server, const std::vector<std::string> &messages)
{
    // libyang itself leaks where an expression compares the outcomes of comparisons.
    const bool hasExpression = std::any_of(messages.begin(), messages.end(), [](const std::string &message) {
        return message.find("xpath") != message.npos;
    });
    const auto tolerant = hasExpression ? std::make_unique<__lsan::ScopedDisabler>() : nullptr;
    const auto wire = std::make_shared<Wire>();
    const auto session = std::make_shared<Session>(
        server.dispatcher, wire, server.sessions.begin("fuzz", "127.0.0.1:1", [] {}), std::size_t{1} << 20);
    session->start();
    session->receive(kHello);
    for (const std::string &message : messages) {
        if (wire->hasEnded)
            break;
        session->receive(message + std::string(kEnd));
        while (session->isBusy() && !session->record()->hasEnded)
            wire->runOne();
    }
    checkAnswers(wire->sent);
    session->end();
    server.sessions.end(session->record(), true);
    if (!server.dispatcher.release(session->record()))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Server server;
    if (size == 0 || size > 4096)
        return 0;
    converse(server, {requestOf(data[0], fuzz::expanded(data + 1, size - 1, kWords)), rpc("<commit/>")});
    // As it was, and the next one is served.
    converse(server,
             {rpc("<discard-changes/>"),
              rpc("<copy-config><target><running/></target><source><config>" +
                  inTop("<plain>p</plain><words>w</words><entry><name>a</name><own>1</own></entry>"
                        "<ranked><name>a</name></ranked>") +
                  "</config></source></copy-config>")});
    server.bench.toy().told();
    return 0;
}
