// Requests of clients: bodies, paths, reads with their parameters, operations.
#include "tests/unit/toolkit/toy.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;

using enum Method;

TEST(Refuses, AndRunningStays)
{
    const struct {
        Method method;
        std::string path, body, tag; // path below toy:top
    } cases[] = {
        {put, "", "", "malformed-message"},
        {put, "", R"({"toy:top":{"plain":"b")", "malformed-message"},
        {put, "plain", R"({"toy:lone":"b"})", "bad-element"},
        {put, "plain", R"({"toy:plain":"b","toy:lone":"c"})", "malformed-message"},
        {put, "entry=k", R"({"toy:entry":[{"name":"l"}]})", "invalid-value"},
        {patch, "", R"({"toy:top":{"nothing":"b"}})", "unknown-element"},
        {patch, "", R"({"toy:top":{"plain":"b","plain":"c"}})", "bad-element"},
        {put, "state/enabled", R"({"toy:enabled":true})", "operation-not-supported"},
        {patch, "entry=none", R"({"toy:entry":[{"name":"none"}]})", "data-missing"},
        {put, "entry=none/own", R"({"toy:own":"o"})", "data-missing"},
        {put, "entry", R"({"toy:entry":[{"name":"k"}]})", "missing-element"},
        {post, "plain", R"({"toy:plain":"b"})", "operation-not-supported"},
        {remove, "entry=a,b", "", "invalid-value"},
        {remove, "entry=k/sub=abc", "", "invalid-value"},
    };
    ToyBench bench(R"({"toy:top":{"plain":"a","entry":[{"name":"k"}]}})");
    const std::string before = bench.running();
    for (const auto &[method, path, body, tag] : cases) {
        EXPECT_EQ(bench.edit(method, "toy:top" + (path.empty() ? "" : "/" + path), body).tag(), tag)
            << path << body;
        EXPECT_EQ(bench.running(), before) << path << body;
    }
}

// Large bodies are looked through for copies before they are read.
TEST(LargeBodies, MayRepeatOnlyWhatDiffers)
{
    const std::string first = "/toy:top/entry[name='0']";
    std::string json, xml;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = std::to_string(i);
        json += std::string(i ? "," : "") + R"({"name":")" + id +
            R"(","own":"o","sub":[{"id":1},{"id":2,"text":"1"}]})";
        xml +=
            "<entry><own>o</own><sub><id>1</id></sub><sub><id> 2 </id></sub><name>" + id + "</name></entry>";
    }
    const struct {
        Encoding encoding;
        std::string more, path; // of the error; empty: there is none
    } cases[] = {
        {Encoding::json, R"({"name":"x"}],"words":["a","b"])", ""},
        {Encoding::json, R"({"name":"0"}])", first},
        {Encoding::json, R"({"name":"x","sub":[{"id":2},{"id":2}]}])",
         "/toy:top/entry[name='x']/sub[id='2']"},
        {Encoding::json, R"({"name":"x"}],"words":["a","b","a"])", "/toy:top/words[.='a']"},
        {Encoding::json, R"({"name":"x"}],"inner":{"deep":"a"},"toy:inner":{})", "/toy:top/inner"},
        {Encoding::xml, "<entry><name>x</name></entry><words>a</words><words>b</words>", ""},
        {Encoding::xml, "<t:entry xmlns:t='urn:test:toy'><t:name>0</t:name></t:entry>", first},
        {Encoding::xml, "<entry><sub><id>2</id></sub><sub><id>02</id></sub><name>x</name></entry>",
         "/toy:top/entry/sub[id='2']"},
        {Encoding::xml, "<plain>a</plain><number>1</number><plain>a</plain>", "/toy:top/plain"},
    };
    for (const auto &[encoding, more, path] : cases) {
        ToyBench bench("{}");
        const std::string body = encoding == Encoding::json
            ? R"({"toy:top":{"entry":[)" + json + "," + more + "}}"
            : "<top xmlns='urn:test:toy'>" + xml + more + "</top>";
        std::string refused;
        try {
            bench.host().edit({put, bench.target("toy:top"), body, encoding, {}, {}});
        } catch (const Failure &failure) {
            refused = failure.errors.front().path;
        }
        EXPECT_EQ(refused, path) << more;
    }
}

TEST(Created, IsToldForWhatWasNotThere)
{
    ToyBench bench;
    EXPECT_TRUE(bench.put("toy:top/entry=k", R"({"toy:entry":[{"name":"k"}]})").created);
    EXPECT_FALSE(bench.put("toy:top/entry=k", R"({"toy:entry":[{"name":"k"}]})").created);
    EXPECT_FALSE(bench.put("toy:top/config", R"({"toy:config":{}})").created); // it exists with its parent
    const EditOutcome posted = bench.host().edit(
        {post, bench.target("toy:top"), R"({"toy:entry":[{"name":"a/b"}]})", Encoding::json, {}, {}});
    EXPECT_EQ(posted.resource->path(), "/toy:top/entry[name='a/b']");
}

TEST(Keys, MayHoldAnything)
{
    ToyBench bench;
    const std::pair<std::string, std::string> names[] = {
        {"ethernet%201%2F1%2F1", "ethernet 1/1/1"},
        {"it%27s", "it's"},
        {"say%20%22hi%22", R"(say \"hi\")"},
        {"a%2Cb", "a,b"},
        {"%5Bx=%27y%27%5D", "[x='y']"},
    };
    for (const auto &[encoded, plain] : names) {
        const std::string path = "toy:top/entry=" + encoded;
        EXPECT_TRUE(bench.put(path, R"({"toy:entry":[{"name":")" + plain + R"(","own":"o"}]})").ok())
            << plain;
        EXPECT_EQ(bench.read(path + "/own"), R"({"toy:own":"o"})") << plain;
        EXPECT_TRUE(bench.remove(path).ok()) << plain;
    }
}

TEST(Insert, PlacesAndMoves)
{
    ToyBench bench(R"({"toy:top":{"words":["a","b"],"ranked":[{"name":"x"},{"name":"y"}]}})");
    const auto add = [&](const std::string &word, InsertWhere where, const char *point = nullptr) {
        const auto target = point ? std::optional(bench.target(point)) : std::nullopt;
        return bench.edit(post, "toy:top", R"({"toy:words":[")" + word + "\"]}", Insert{where, target}).tag();
    };
    EXPECT_EQ(add("c", InsertWhere::first), "");
    EXPECT_EQ(add("d", InsertWhere::before, "toy:top/words=b"), "");
    EXPECT_EQ(add("e", InsertWhere::after, "toy:top/words=none"), "bad-attribute");
    EXPECT_EQ(bench.read("toy:top/words"), R"({"toy:words":["c","a","d","b"]})");
    const Insert behind{InsertWhere::after, bench.target("toy:top/ranked=y")};
    EXPECT_TRUE(bench.edit(put, "toy:top/ranked=x", R"({"toy:ranked":[{"name":"x"}]})", behind).ok());
    EXPECT_EQ(bench.read("toy:top/ranked"), R"({"toy:ranked":[{"name":"y"},{"name":"x"}]})");
}

std::string readText(ToyBench &bench, const std::string &path, unsigned depth, std::vector<FieldNode> fields,
                     WithDefaults defaults, Encoding encoding = Encoding::json)
{
    auto text = bench.host()
                    .read({bench.target(path), Content::config, depth, std::move(fields), defaults, encoding})
                    .value_or("");
    std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
    return text;
}

TEST(Reads, DefaultsOfContainersWithoutData)
{
    ToyBench bench("{}");
    for (const char *path : {"", "toy:top", "toy:top/number"})
        EXPECT_THAT(readText(bench, path, 0, {}, WithDefaults::reportAll), testing::HasSubstr("number\":7"))
            << path;
}

TEST(Reads, DepthFieldsAndDefaults)
{
    ToyBench bench(
        R"({"toy:top":{"plain":"a","config":{"limit":3},"entry":[{"name":"k","own":"o","config":{"value":"v"}}]}})");
    const auto plain = WithDefaults::explicitOnly;
    EXPECT_EQ(readText(bench, "toy:top", 1, {}, plain), R"({"toy:top":{}})");
    EXPECT_EQ(readText(bench, "toy:top", 2, {}, plain),
              R"({"toy:top":{"plain":"a","config":{},"entry":[{"name":"k"}]}})");
    EXPECT_EQ(readText(bench, "toy:top", 0, {{"", "entry", {{"", "own", {}}}}, {"toy", "plain", {}}}, plain),
              R"({"toy:top":{"plain":"a","entry":[{"name":"k","own":"o"}]}})");
    EXPECT_THROW(readText(bench, "toy:top", 0, {{"", "nothing", {}}}, plain), Failure);
    EXPECT_EQ(readText(bench, "toy:top", 0, {{"", "number", {}}}, WithDefaults::reportAll),
              R"({"toy:top":{"number":7}})");
    EXPECT_EQ(readText(bench, "toy:top/number", 0, {}, plain), "");
    EXPECT_TRUE(bench.put("toy:top/number", R"({"toy:number":7})").ok());
    EXPECT_EQ(readText(bench, "toy:top/number", 0, {}, plain), R"({"toy:number":7})");
    EXPECT_EQ(readText(bench, "toy:top", 0, {{"", "number", {}}}, WithDefaults::trim), R"({"toy:top":{}})");
    EXPECT_EQ(readText(bench, "toy:top/plain", 0, {}, plain, Encoding::xml),
              R"(<plainxmlns="urn:test:toy">a</plain>)");
}

TEST(Reads, KnownWithoutData)
{
    ToyBench bench;
    EXPECT_EQ(bench.read("toy:top/plain"), "");
    EXPECT_EQ(bench.read("toy:top/entry=k"), "");
    EXPECT_EQ(bench.read("toy:top/entry=k/config"), ""); // its entry is not there either
    EXPECT_EQ(bench.read("toy:top/config"), R"({"toy:config":{}})");
    EXPECT_EQ(bench.read("toy:top/marked"), "");
}

TEST(Reads, TheYangLibraryAndProviders)
{
    ToyBench bench;
    bench.host().addStateProvider("toy", [] { return std::string(R"({"toy:top":{"state":{"count":5}}})"); });
    EXPECT_EQ(bench.read("toy:top/state/count", Content::all), R"({"toy:count":5})");
    EXPECT_THAT(bench.read("ietf-yang-library:yang-library", Content::all),
                testing::HasSubstr(R"("name":"toy","revision":"2024-01-01")"));
}

std::string add(ToyBench &bench, const std::string &input)
{
    try {
        std::string text =
            bench.host().invoke(bench.target("toy:add"), input, Encoding::json, Encoding::json).value_or("-");
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        return text;
    } catch (const Failure &failure) {
        return failure.errors.front().tag + " " + failure.errors.front().appTag;
    }
}

TEST(Operations, InputIsCheckedAndOutputComesBack)
{
    ToyBench bench;
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":1,"b":2}})"), "operation-not-supported ");
    agt_rpc_register_method("toy", "add", operationValidate, [](Session *, Request *msg, Value *) -> Status {
        return agt_get_rpc_input(msg) ? kOk : kFailed;
    });
    agt_rpc_register_method("toy", "add", operationInvoke, addUp);
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":1,"b":2}})"), R"({"toy:output":{"response":{"sum":3}}})");
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":-1}})"), "invalid-value 261");
    EXPECT_EQ(add(bench, R"({"toy:input":{"b":1}})"), "missing-element "); // mandatory
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":"x"}})"), "invalid-value ");
    EXPECT_EQ(add(bench, R"({"other":{"a":1}})"), "unknown-element ");
    agt_rpc_unregister_method("toy", "add");
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":1,"b":2}})"), "operation-not-supported ");
}

} // namespace
} // namespace test
