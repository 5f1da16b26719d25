// Requests of clients: bodies, paths, reads with their parameters, operations.
#include "tests/unit/toolkit/toy.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;

struct BadRequest {
    std::string name;
    Method method;
    std::string path, body, tag;
};

class Refuses : public testing::TestWithParam<BadRequest> { };

TEST_P(Refuses, AndRunningStays)
{
    const BadRequest &c = GetParam();
    ToyBench bench(R"({"toy:top":{"plain":"a","entry":[{"name":"k"}]}})");
    const std::string before = bench.running();
    EXPECT_EQ(bench.edit(c.method, c.path, c.body).tag(), c.tag);
    EXPECT_EQ(bench.running(), before);
}

const BadRequest kBadRequests[] = {
    {"no_body", Method::put, "toy:top", "", "malformed-message"},
    {"not_json", Method::put, "toy:top", "{]", "malformed-message"},
    {"cut_off", Method::put, "toy:top", R"({"toy:top":{"plain":"b")", "malformed-message"},
    {"another_resource", Method::put, "toy:top/plain", R"({"toy:lone":"b"})", "bad-element"},
    {"two_resources", Method::put, "toy:top/plain", R"({"toy:plain":"b","toy:lone":"c"})",
     "malformed-message"},
    {"other_keys_than_the_path", Method::put, "toy:top/entry=k", R"({"toy:entry":[{"name":"l"}]})",
     "invalid-value"},
    {"no_key_in_the_body", Method::put, "toy:top/entry=k", R"({"toy:entry":[{"own":"o"}]})", "invalid-value"},
    {"unknown_leaf", Method::patch, "toy:top", R"({"toy:top":{"nothing":"b"}})", "unknown-element"},
    {"wrong_type", Method::put, "toy:top/number", R"({"toy:number":"many"})", "invalid-value"},
    {"out_of_range", Method::put, "toy:top/number", R"({"toy:number":256})", "invalid-value"},
    {"the_same_leaf_twice", Method::patch, "toy:top", R"({"toy:top":{"plain":"b","plain":"c"}})",
     "bad-element"},
    {"state", Method::put, "toy:top/state/enabled", R"({"toy:enabled":true})", "operation-not-supported"},
    {"post_of_what_is_there", Method::post, "toy:top", R"({"toy:plain":"b"})", "data-exists"},
    {"delete_of_nothing", Method::remove, "toy:top/lone", "", "data-missing"},
    {"patch_of_nothing", Method::patch, "toy:top/entry=none", R"({"toy:entry":[{"name":"none"}]})",
     "data-missing"},
    {"below_an_entry_that_is_not_there", Method::put, "toy:top/entry=none/own", R"({"toy:own":"o"})",
     "data-missing"},
    {"a_list_without_keys", Method::put, "toy:top/entry", R"({"toy:entry":[{"name":"k"}]})",
     "missing-element"},
    {"post_below_a_leaf", Method::post, "toy:top/plain", R"({"toy:plain":"b"})", "operation-not-supported"},
    {"unknown_module", Method::put, "nothing:top", "{}", "unknown-element"},
    {"too_many_keys", Method::remove, "toy:top/entry=a,b", "", "invalid-value"},
    {"key_of_the_wrong_type", Method::remove, "toy:top/entry=k/sub=abc", "", "invalid-value"},
};
INSTANTIATE_TEST_SUITE_P(Table, Refuses, testing::ValuesIn(kBadRequests), CaseName());

TEST(Created, IsToldForWhatWasNotThere)
{
    ToyBench bench;
    EXPECT_TRUE(bench.put("toy:top/entry=k", R"({"toy:entry":[{"name":"k"}]})").created);
    EXPECT_FALSE(bench.put("toy:top/entry=k", R"({"toy:entry":[{"name":"k"}]})").created);
    EXPECT_FALSE(bench.put("toy:top/config", R"({"toy:config":{}})").created); // it exists with its parent
    const EditOutcome posted = bench.host().edit({Method::post,
                                                  bench.target("toy:top"),
                                                  R"({"toy:entry":[{"name":"a/b"}]})",
                                                  Encoding::json,
                                                  std::nullopt,
                                                  {}});
    EXPECT_EQ(posted.resource->path(), "/toy:top/entry[name='a/b']");
}

TEST(Keys, MayHoldAnything)
{
    ToyBench bench;
    for (const std::string name :
         {"ethernet%201%2F1%2F1", "it%27s", "say%20%22hi%22", "a%2Cb", "%5Bx=%27y%27%5D"}) {
        const std::string path = "toy:top/entry=" + name;
        const std::string plain = pathSteps(path).back().keys.at(0);
        std::string quoted;
        for (const char c : plain)
            quoted += c == '"' ? std::string("\\\"") : std::string(1, c);
        EXPECT_TRUE(bench.put(path, R"({"toy:entry":[{"name":")" + quoted + R"(","own":"o"}]})").ok())
            << plain;
        EXPECT_EQ(bench.read(path + "/own"), R"({"toy:own":"o"})") << plain;
        EXPECT_TRUE(bench.remove(path).ok()) << plain;
    }
}

TEST(Insert, PlacesAndMoves)
{
    ToyBench bench(R"({"toy:top":{"words":["a","b"],"ranked":[{"name":"x"},{"name":"y"}]}})");
    const auto at = [&](InsertWhere where, const char *point) {
        return Insert{where, point ? std::optional(bench.target(point)) : std::nullopt};
    };
    EXPECT_TRUE(
        bench.edit(Method::post, "toy:top", R"({"toy:words":["c"]})", at(InsertWhere::first, nullptr)).ok());
    EXPECT_TRUE(bench
                    .edit(Method::post, "toy:top", R"({"toy:words":["d"]})",
                          at(InsertWhere::before, "toy:top/words=b"))
                    .ok());
    EXPECT_EQ(bench.read("toy:top/words"), R"({"toy:words":["c","a","d","b"]})");
    EXPECT_TRUE(bench
                    .edit(Method::put, "toy:top/ranked=x", R"({"toy:ranked":[{"name":"x"}]})",
                          at(InsertWhere::after, "toy:top/ranked=y"))
                    .ok());
    EXPECT_EQ(bench.read("toy:top/ranked"), R"({"toy:ranked":[{"name":"y"},{"name":"x"}]})");
    EXPECT_EQ(bench
                  .edit(Method::post, "toy:top", R"({"toy:words":["e"]})",
                        at(InsertWhere::after, "toy:top/words=none"))
                  .tag(),
              "bad-attribute");
}

std::string readText(ToyBench &bench, const std::string &path, unsigned depth, std::vector<FieldNode> fields,
                     WithDefaults defaults, Encoding encoding = Encoding::json)
{
    const auto text = bench.host().read(
        {bench.target(path), Content::config, depth, std::move(fields), defaults, encoding});
    std::string plain;
    for (const char c : text.value_or(""))
        if (c != '\n' && c != ' ')
            plain += c;
    return plain;
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

Status addValidate(Session *, Request *msg, Value *)
{
    return agt_get_rpc_input(msg) ? kOk : kFailed;
}

Status addInvoke(Session *, Request *msg, Value *)
{
    const Value *input = agt_get_rpc_input(msg), *b = val_find_child(input, "toy", "b");
    if (!b) {
        agt_record_error(nullptr, msg->mhdr, kContentLayer, kInvalidValue, nullptr, infoString,
                         "b is missing", infoNone, nullptr);
        return kInvalidValue;
    }
    const auto sum = val_get_int64(val_find_child(input, "toy", "a")) + val_get_int64(b);
    Object *response = obj_find_child(obj_find_child(msg->method, "toy", "output"), "toy", "response");
    Status status = kOk;
    agt_rpc_add_return_val(agt_make_int_leaf(obj_find_child(response, "toy", "sum"), "sum",
                                             static_cast<std::int32_t>(sum), &status),
                           msg);
    return status;
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
    agt_rpc_register_method("toy", "add", operationValidate, addValidate);
    agt_rpc_register_method("toy", "add", operationInvoke, addInvoke);
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":1,"b":2}})"), R"({"toy:output":{"response":{"sum":3}}})");
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":1}})"), "invalid-value 261");
    EXPECT_EQ(add(bench, R"({"toy:input":{"b":1}})"), "missing-element "); // mandatory
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":"x"}})"), "invalid-value ");
    EXPECT_EQ(add(bench, R"({"other":{"a":1}})"), "unknown-element ");
    agt_rpc_unregister_method("toy", "add");
    EXPECT_EQ(add(bench, R"({"toy:input":{"a":1,"b":2}})"), "operation-not-supported ");
}

} // namespace
} // namespace test
