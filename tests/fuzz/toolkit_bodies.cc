// Bodies in JSON and XML on their way into running. What is refused changes nothing; what is accepted leaves
// data that the schema allows, and that can be written back as they were read without changing anything.
//
// The first three bytes choose method, target and encoding; the rest is the body.
#include "server/nesting.h"
#include "tests/fuzz/words.h"
#include "tests/unit/toolkit/toy.h"
#include "toolkit/src/body.h"
#include "toolkit/src/constraints.h"
#include "toolkit/src/repeats.h"

#include <cstdio>
#include <cstdlib>

namespace {

using tk::Encoding;
using tk::Method;

constexpr const char *kJsonWords[] = {
    "{\"toy:top\":{",
    "{\"checks:checks\":{",
    "{\"toy:late\":{\"plain\":\"l\"}}",
    "{\"ietf-restconf:data\":{",
    "{\"toy:config\":{",
    "{\"toy:entry\":[{",
    "{\"toy:ranked\":[{",
    "{\"toy:words\":[",
    "{\"checks:item\":[{",
    "{\"toy:marked\":{",
    "\"plain\":\"p\"",
    "\"words\":[\"a\",\"b\"]",
    "\"number\":7",
    "\"number\":256",
    "\"form\":\"round\"",
    "\"form\":\"toy:round\"",
    "\"inner\":{\"deep\":\"x\"}",
    "\"config\":{",
    "\"enabled\":true",
    "\"limit\":10",
    "\"limit\":\"10\"",
    "\"marked\":{}",
    "\"lone\":\"l\"",
    "\"entry\":[{",
    "\"name\":\"a\"",
    "\"name\":\"b\"",
    "\"own\":\"o\"",
    "\"sub\":[{\"id\":1}]",
    "\"ranked\":[{",
    "\"first\":\"1\"",
    "\"second\":\"2\"",
    "\"mode\":\"fancy\"",
    "\"ornament\":\"o\"",
    "\"frill\":{\"size\":1}",
    "\"cap\":5",
    "\"current\":6",
    "\"item\":[{",
    "\"tag\":\"t\"",
    "\"needed\":\"n\"",
    "\"friend\":\"a\"",
    "\"by-road\":\"r\"",
    "\"by-sea\":\"s\"",
    "\"port\":\"p\"",
    "\"chosen\":\"a\"",
    "\"few\":[1,2,3,4]",
    "\"group\":{\"member\":[\"1\",\"2\"]}",
    "\"total\":3",
    "\"@\":{",
    "\"@plain\":{\"ietf-netconf:operation\":\"delete\"}",
    "\"toy:state\":{\"count\":1}",
    "},{",
    "]",
    "}",
    ",",
    "null",
    "[null]",
    "\\u0041",
    "\\ud800",
    "\"\"",
    "-1",
    "1e99",
    "{",
    "[",
    "\"",
};
constexpr const char *kXmlWords[] = {
    "<top xmlns='urn:test:toy'>",
    "</top>",
    "<checks xmlns='urn:test:checks'>",
    "</checks>",
    "<data xmlns='urn:ietf:params:xml:ns:yang:ietf-restconf'>",
    "</data>",
    "<late xmlns='urn:test:toy'><plain>l</plain></late>",
    "<config xmlns='urn:test:toy'>",
    "<entry xmlns='urn:test:toy'>",
    "<item xmlns='urn:test:checks'>",
    " xmlns='urn:test:toy'",
    "<plain>p</plain>",
    "<words>a</words>",
    "<words>b</words>",
    "<number>7</number>",
    "<number>256</number>",
    "<form>round</form>",
    "<form xmlns:t='urn:test:toy'>t:round</form>",
    "<inner><deep>x</deep></inner>",
    "<config>",
    "</config>",
    "<enabled>true</enabled>",
    "<limit> 10 </limit>",
    "<marked/>",
    "<lone/>",
    "<entry>",
    "</entry>",
    "<name>a</name>",
    "<name>b</name>",
    "<own>o</own>",
    "<sub><id>1</id></sub>",
    "<ranked>",
    "</ranked>",
    "<first>1</first>",
    "<second>2</second>",
    "<mode>fancy</mode>",
    "<ornament>o</ornament>",
    "<frill><size>1</size></frill>",
    "<cap>5</cap>",
    "<current>6</current>",
    "<item>",
    "</item>",
    "<tag>t</tag>",
    "<needed>n</needed>",
    "<friend>a</friend>",
    "<by-road>r</by-road>",
    "<by-sea>s</by-sea>",
    "<port>p</port>",
    "<chosen>a</chosen>",
    "<few>1</few>",
    "<few>2</few>",
    "<group><member>1</member><member>2</member></group>",
    "<total>3</total>",
    " xmlns:nc='urn:ietf:params:xml:ns:netconf:base:1.0' nc:operation='delete'",
    "<state/>",
    "<!--",
    "-->",
    "<![CDATA[",
    "]]>",
    "&lt;",
    "&#x41;",
    "&#0;",
    "<?pi?>",
    "<!DOCTYPE a [<!ENTITY b 'c'>]>",
};

constexpr const char *kTargets[] = {
    "",
    "toy:top",
    "toy:top/config",
    "toy:top/entry=a",
    "toy:top/entry=a/sub=1",
    "toy:top/plain",
    "toy:top/words=a",
    "toy:top/marked",
    "toy:top/ranked=b",
    "toy:top/form",
    "checks:checks",
    "checks:checks/item=a",
    "checks:checks/group",
    "toy:late",
    "toy:top/inner",
};
constexpr Method kMethods[] = {Method::put, Method::patch, Method::post, Method::remove};

constexpr char kStart[] = R"({"ietf-restconf:data":{
    "toy:top":{"plain":"p","words":["w"],"entry":[{"name":"a","own":"1"}],"ranked":[{"name":"b"}]},
    "checks:checks":{"item":[{"name":"a","tag":"t","needed":"n","by-road":"r"}],"chosen":"a","cap":50}}})";

class Arena {
public:
    void take(Method method, const char *target, const std::string &body, Encoding encoding)
    {
        begin();
        const std::string before = whole(Encoding::json);
        const bool isRefused = method != Method::remove && hasRepeats(method, target, body, encoding);
        try {
            bench_.host().edit({method, bench_.target(target), body, encoding, {}, {}});
        } catch (const tk::Failure &) {
            if (whole(Encoding::json) != before)
                fail("a refused edit changed running", body);
            return;
        }
        if (isRefused)
            fail("accepted, but refused in a large body", body);
        checkAllowed(body);
        for (const Encoding one : {Encoding::json, Encoding::xml})
            writeBack(one, body);
    }

private:
    void begin()
    {
        if (!bench_.put("", kStart).ok())
            std::abort();
        bench_.told();
    }

    // The look at large bodies must not refuse what is accepted in small ones.
    bool hasRepeats(Method method, const char *target, const std::string &body, Encoding encoding)
    {
        const tk::Target where = bench_.target(target);
        const lysc_node *schema = where.node().schema();
        const bool isWhole = !schema && method != Method::post;
        try {
            tk::refuseRepeats(bench_.host().impl().context.ly(),
                              isWhole ? tk::unwrap(body, encoding, "data") : body, encoding,
                              schema && method != Method::post ? tk::dataParent(schema) : schema);
        } catch (const tk::Failure &) {
            return true;
        }
        return false;
    }

    std::string whole(Encoding encoding)
    {
        return bench_.host()
            .read({bench_.target(""), tk::Content::config, 0, {}, tk::WithDefaults::explicitOnly, encoding})
            .value_or("");
    }

    [[noreturn]] void fail(const char *what, const std::string &body)
    {
        std::fprintf(stderr, "%s\nbody: %s\nrunning: %s\n", what, body.c_str(),
                     whole(Encoding::json).c_str());
        std::abort();
    }

    // The checks of an edit follow what it can have broken; these here are those of everything.
    void checkAllowed(const std::string &body)
    {
        lyd_node *copy = nullptr;
        {
            const auto reading = bench_.host().impl().engine.read();
            if (reading.root &&
                lyd_dup_siblings(reading.root, nullptr, LYD_DUP_RECURSIVE | LYD_DUP_WITH_FLAGS, &copy))
                std::abort();
        }
        const tk::Tree owner(copy);
        try {
            tk::checkWholeTree(owner.get(), bench_.host().impl().context.ly(), nullptr);
        } catch (const tk::Failure &failure) {
            fail(failure.what(), body);
        }
    }

    void writeBack(Encoding encoding, const std::string &body)
    {
        bench_.told();
        const std::string text = whole(encoding);
        try {
            if (bench_.host().edit({Method::put, bench_.target(""), text, encoding, {}, {}}).changed)
                fail("writing back what was read changes running", body);
        } catch (const tk::Failure &failure) {
            fail(failure.what(), body);
        }
        if (!bench_.told().empty())
            fail("writing back what was read is told", body);
    }

    test::ToyBench bench_{"{}", {}, {"checks"}};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Arena arena;
    if (size < 3 || size > 4096)
        return 0;
    const Encoding encoding = data[2] & 1 ? Encoding::xml : Encoding::json;
    const bool isXml = encoding == Encoding::xml;
    const std::string body = isXml ? fuzz::expanded(data + 3, size - 3, kXmlWords)
                                   : fuzz::expanded(data + 3, size - 3, kJsonWords);
    // As every front end does.
    if (isXml ? agentd::xmlNestingFault(body) : agentd::jsonNestingFault(body))
        return 0;
    arena.take(kMethods[data[0] % std::size(kMethods)], kTargets[data[1] % std::size(kTargets)], body,
               encoding);
    return 0;
}
