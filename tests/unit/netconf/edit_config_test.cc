// edit-config: what the operation attributes do to running, and what callbacks hear of it.
#include "tests/unit/netconf/stores_bench.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

constexpr auto kMerge = DefaultOperation::merge, kReplace = DefaultOperation::replace,
               kNone = DefaultOperation::none;

struct Case {
    std::string name, running; // JSON
    std::string edit, after;   // in <top>
    std::string told = "";     // in apply
    DefaultOperation mode = kMerge;
};

class EditConfig : public testing::TestWithParam<Case> { };

TEST_P(EditConfig, ChangesRunningAndTellsCallbacks)
{
    const Case &c = GetParam();
    StoresBench bench(c.running);
    EXPECT_THAT(bench.edit({.defaultOperation = c.mode, .config = configElement(top(c.edit))}).refusals,
                ElementsAre());
    EXPECT_EQ(bench.running(), top(c.after));
    EXPECT_EQ(joined(bench.toy().told("apply")), c.told);
}

const char kTwoEntries[] = R"({"entry":[{"name":"a","own":"1"},{"name":"b","own":"2"}]})";
const char kRanked[] = R"({"ranked":[{"name":"a"},{"name":"b"},{"name":"c"}]})";

std::string ranked(const std::string &names)
{
    std::string text;
    for (const char name : names)
        text += std::string("<ranked><name>") + name + "</name></ranked>";
    return text;
}

const Case kCases[] = {
    {"replace_takes_what_is_not_named", R"({"config":{"enabled":true,"limit":3}})",
     "<config nc:operation='replace'><limit>4</limit></config>", "<config><limit>4</limit></config>",
     "replace /toy:top/config enabled:delete limit:merge=4"},
    {"replace_as_default_takes_everything_else", R"({"plain":"a","config":{"limit":3}})", "<plain>b</plain>",
     "<plain>b</plain>", "replace /toy:top plain:merge=b; replace /toy:top/config limit:delete", kReplace},
    {"create_of_what_is_not_there", "{}", "<marked nc:operation='create'/>", "<marked/>",
     "create /toy:top/marked"},
    {"delete_of_a_leaf_with_another_value", R"({"number":3,"plain":"a"})",
     "<number nc:operation='delete'>9</number>", "<plain>a</plain>", "merge /toy:top number:delete"},
    {"remove_of_what_is_there", kTwoEntries, "<entry nc:operation='remove'><name>b</name><own/></entry>",
     "<entry><name>a</name><own>1</own></entry>", "delete /toy:top/entry[name='b']"},
    {"remove_of_what_is_not_there", R"({"plain":"a"})",
     "<number nc:operation='remove'/><entry nc:operation='remove'><name>x</name></entry>",
     "<plain>a</plain>"},
    {"none_as_default_goes_down_to_an_operation", kTwoEntries,
     "<entry><name>a</name><own nc:operation='merge'>9</own></entry>",
     "<entry><name>a</name><own>9</own></entry><entry><name>b</name><own>2</own></entry>",
     "merge /toy:top/entry[name='a'] own:merge=9", kNone},
    {"operations_inside_operations",
     R"({"entry":[{"name":"a","own":"1","config":{"value":"x","other":"y"}}]})",
     "<entry nc:operation='merge'><name>a</name><config nc:operation='replace'><value>z</value></config><own "
     "nc:operation='remove'/></entry>",
     "<entry><name>a</name><config><value>z</value></config></entry>",
     "merge /toy:top/entry[name='a'] own:delete; replace /toy:top/entry[name='a']/config value:merge=z "
     "other:delete"},
    {"several_entries_in_the_order_of_the_request", "{}",
     "<entry><name>b</name></entry><entry><name>a</name></entry>",
     "<entry><name>b</name></entry><entry><name>a</name></entry>",
     "create /toy:top/entry[name='b'] name:create=b; create /toy:top/entry[name='a'] name:create=a"},
    {"insert_before_moves", kRanked, "<ranked y:insert='before' y:key=\"[name='a']\"><name>c</name></ranked>",
     ranked("cab"), "merge /toy:top/ranked[name='c']"},
    {"insert_after_one_of_the_same_request", kRanked,
     "<ranked><name>x</name></ranked><ranked y:insert='after' y:key=\"[name='x']\"><name>a</name></ranked>",
     ranked("bcxa"), "create /toy:top/ranked[name='x'] name:create=x; merge /toy:top/ranked[name='a']"},
    {"insert_of_a_value", R"({"words":["a","b"]})", "<words y:insert='before' y:value='b'>x</words>",
     "<words>a</words><words>x</words><words>b</words>", "merge /toy:top words:create=x"},
    {"a_value_marked_as_default_goes", R"({"number":3,"plain":"a"})", "<number wd:default='true'>7</number>",
     "<plain>a</plain>", "merge /toy:top number:delete"},
    {"a_new_case_takes_the_place_of_the_old_one", R"({"first":"a"})", "<second>b</second>",
     "<second>b</second>", "merge /toy:top first:delete second:create=b"},
};

INSTANTIATE_TEST_SUITE_P(Table, EditConfig, testing::ValuesIn(kCases), CaseName());

TEST(EditConfigRefuses, AndRunningStays)
{
    const std::string newRanked = "'><name>x</name></ranked>", rankedX = "/toy:top/ranked[name='x']";
    const struct {
        std::string edit, tag, path = ""; // in <config>
        DefaultOperation mode = kMerge;
    } table[] = {
        {"<top xmlns='urn:test:nothing'/>", "unknown-namespace"},
        {"<top/>", "unknown-namespace"},
        {top("<entry><name>a</name><nothing/></entry>"), "unknown-element", "/toy:top/entry[name='a']"},
        {"<add xmlns='urn:test:toy'/>", "unknown-element"},
        {top("<plain nc:operation='destroy'>b</plain>"), "bad-attribute", "/toy:top/plain"},
        {top("<plain colour='red'>b</plain>"), "unknown-attribute", "/toy:top/plain"},
        {top("<number>many</number>"), "invalid-value", "/toy:top/number"},
        {top("<entry><own>x</own></entry>"), "missing-element", "/toy:top/entry"},
        {top("<entry><name>a</name></entry><entry><name>a</name></entry>"), "bad-element",
         "/toy:top/entry[name='a']"},
        {top("<plain>b</plain><plain>c</plain>"), "bad-element", "/toy:top/plain"},
        {top("<config nc:operation='create'><limit>4</limit></config>"), "data-exists", "/toy:top/config"},
        {top("<number nc:operation='delete'/>"), "data-missing", "/toy:top/number"},
        {top("<entry><name>x</name><own nc:operation='merge'>1</own></entry>"), "data-missing",
         "/toy:top/entry[name='x']", kNone},
        {top("<config nc:operation='delete'><limit nc:operation='create'>4</limit></config>"),
         "bad-attribute", "/toy:top/config/limit"},
        {top("<entry y:insert='first'><name>x</name></entry>"), "unknown-attribute",
         "/toy:top/entry[name='x']"},
        {top("<ranked y:insert='up" + newRanked), "bad-attribute", rankedX},
        {top("<ranked y:insert='after" + newRanked), "bad-attribute", rankedX},
        {top("<ranked y:insert='after' y:key='[name=\"z\"]" + newRanked), "bad-attribute", rankedX},
        {top("<ranked nc:operation='delete'><name>a</name></ranked><ranked y:insert='after' "
             "y:key='[name=\"a\"]" +
             newRanked),
         "bad-attribute", rankedX},
        {top("<ranked y:insert='after' y:key='name=\"a\"" + newRanked), "bad-attribute", rankedX},
        {top("<number wd:default='true'>8</number>"), "invalid-value", "/toy:top/number"},
        {top("<state><count>1</count></state>"), "invalid-value", "/toy:top/state"},
        {top("<first>a</first><second>b</second>"), "bad-element", "/toy:top/second"},
        {top("text<plain>b</plain>"), "malformed-message"},
    };
    StoresBench bench(R"({"plain":"a","config":{"limit":3},"ranked":[{"name":"a"}]})");
    const std::string before = bench.running();
    for (const auto &[edit, tag, path, mode] : table) {
        SCOPED_TRACE(edit);
        const Outcome outcome = bench.edit({.defaultOperation = mode, .config = configElement(edit)});
        ASSERT_EQ(outcome.refusals.size(), 1U);
        EXPECT_EQ(outcome.tag(), tag) << outcome.message();
        EXPECT_EQ(outcome.refusals[0].path, path);
        EXPECT_EQ(bench.running(), before);
        EXPECT_THAT(bench.toy().told(), ElementsAre());
    }
}

TEST(EditConfigTestOnly, AsksCallbacksToValidateAndChangesNothing)
{
    StoresBench bench;
    ConfigEdit edit{.test = TestOption::testOnly, .config = configElement(top("<plain>a</plain>"))};
    EXPECT_TRUE(bench.edit(edit).ok());
    EXPECT_THAT(bench.toy().told(), ElementsAre("validate merge /toy:top plain:create=a"));
    EXPECT_EQ(bench.running(), "");
    bench.toy().failAt("validate", "/toy:top", kInvalidValue, "not this one");
    EXPECT_EQ(bench.edit(edit).message(), "not this one");
}

} // namespace
} // namespace test
